proc main {} {
    set numbers [lrepeat 100000 7]
    test verify [expr {$numbers eq [lrepeat 100000 7]}] "a long list" ;# @list
    set text [string repeat x 1000000]
    test compare [string length $text] 1000000 "a long text" ;# @text
    test verify [expr {$text eq [string repeat x 1000000]}] ;# @same
}
