proc main {} {
    testSettings configure -throwOnFailure true
    try {
        test compare 1 2 "the first" ;# @first
    } trap {TAMRIX VERIFICATION} {} {
        test log caught ;# @caught
    }
    test verify false "the second" ;# @second
    test log never
}

proc cleanup {} {
    test log cleanup ;# @cleanup
}
