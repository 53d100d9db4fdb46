proc main {} {
    test log before ;# @before
    while {1} {}
}
