proc main {} {
    test verify [expr {[currentApplicationContext] eq ""}] ;# @null
    test compare {} {} ;# @equal
    test log "without a detail" {} ;# @left
}
