proc main {} {
    set number 3
    test exception {failWith $number} "it raises" ;# @raises
    test exception {expr {1 + 1}} "it does not" ;# @passes
}

proc failWith {number} {
    error "number $number"
}
