proc main {} {
    error "in main" ;# @main
}

proc cleanup {} {
    error "in cleanup" ;# @cleanup
}
