proc main {} {
    source [findFile scripts source_more.tcl]
    test compare [twice 21] 42 ;# @twice
    report ;# @main
}
