proc twice {number} {
    return [expr {2 * $number}]
}

proc report {} {
    test log "from the other file" ;# @report
}
