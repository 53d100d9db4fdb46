proc check {value} {
    return [test verify [expr {$value > 3}] "big enough"] ;# @check
}

proc main {} {
    check 5
    check 1 ;# @main
}
