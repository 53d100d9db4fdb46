proc main {} {
    test log before ;# @before
    exit
    test log never
}

proc cleanup {} {
    test log cleanup ;# @cleanup
}
