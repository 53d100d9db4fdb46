proc good {} {
    return 1
}

proc bad {} {
    error wrong
}

proc main {} {
    test exception bad "it raises" ;# @raises
    test exception good "it does not" ;# @passes
}
