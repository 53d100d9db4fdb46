proc init {} {
    error "not ready" ;# @init
}

proc main {} {
    test log never
}

proc cleanup {} {
    test log cleanup ;# @cleanup
}
