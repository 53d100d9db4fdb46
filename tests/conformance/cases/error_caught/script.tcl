proc main {} {
    if {[catch {error wrong} message]} {
        test log caught $message ;# @caught
    }
    test pass "it goes on" ;# @on
}
