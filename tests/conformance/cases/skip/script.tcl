proc main {} {
    test log before ;# @before
    test skip "not here" "the reason" ;# @skip
    test log never
}

proc cleanup {} {
    test log cleanup ;# @cleanup
}
