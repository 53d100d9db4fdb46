source [findFile scripts error_in_module_helper.tcl]

proc main {} {
    callBack fail ;# @main
}

proc fail {} {
    error "called back" ;# @fail
}
