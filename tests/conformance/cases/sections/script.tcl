proc main {} {
    test startSection outer "its description" ;# @outer
    test startSection inner ;# @inner
    test log inside ;# @inside
    test endSection
    test log between ;# @between
    test startSection "left open" ;# @open
    test log "at the end" ;# @end
}
