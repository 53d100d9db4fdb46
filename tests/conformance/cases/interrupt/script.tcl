proc main {} {
    test log looping ;# @looping
    while {1} {}
}
