proc main {} {
    set context [startApplication widgets]
    set start [string range [$context startTime] 0 18]
    set age [expr {[clock seconds] - [clock scan $start -format %Y-%m-%dT%H:%M:%S]}]
    test verify [expr {abs($age) < 60}] ;# @age
}
