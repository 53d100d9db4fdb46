proc main {} {
    test log "äöü \u20ac 中文" ;# @plane
    test log "😀 and 􏿿" ;# @beyond
    test log "a tab\tand a\nnew line" ;# @control
    test log "a NUL\0in it" ;# @nul
    test log "\ufeffmark" ;# @mark
    test log "" ;# @empty
}
