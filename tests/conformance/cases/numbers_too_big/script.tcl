proc main {} {
    startApplication widgets
    set window [waitForObject "{type='Window'}"]
    foreach number {2147483648 9007199254740993 2.7} {
        if {[catch {$window spread Wide $number}]} {
            test log refused ;# @refused
        } else {
            test fail "it was cut"
        }
    }
}
