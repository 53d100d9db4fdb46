proc again {depth} {
    return [expr {[again [expr {$depth + 1}]] + 1}] ;# @again
}

proc main {} {
    if {[catch {again 0}]} {
        test log caught ;# @caught
    }
}
