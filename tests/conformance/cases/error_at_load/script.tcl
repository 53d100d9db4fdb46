proc prepare {} {
    error "too early" ;# @prepare
}

prepare ;# @load

proc main {} {
    test log never
}
