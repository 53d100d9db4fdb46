proc main {} {
    test compare 1 1 ;# @integers
    test compare [list 1 [list 2 3]] {1 {2 3}} ;# @lists
    test compare [dict create a 1 b 2] [dict create b 2 a 1] ;# @maps
    test compare "\u00e4\u20ac" "\u00e4\u20ac" ;# @texts
    test compare "line 1\nline 2" "line 1\nline 2" ;# @lines
}
