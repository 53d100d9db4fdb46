proc check {number} {
    test fixateResultContext
    test compare [expr {$number % 2}] 0 even
    test restoreResultContext
    test log "at its own line" ;# @own
}

proc main {} {
    check 2 ;# @two
    check 4 ;# @four
}
