proc enough {} {
    incr ::calls
    return [expr {$::calls > 2}]
}

proc main {} {
    set ::calls 0
    test verify [waitFor {[enough]} 5000] ;# @callable
    test compare $::calls 3 ;# @calls
    test verify [waitFor {$::calls == 3} 1000] ;# @text
    test verify [expr {![waitFor {0} 50]}] ;# @over
}
