proc main {} {
    proc ::puts {args} {}
    set ::env(TAMRIX_LEFT) yes
    cd /
    set ::testGlobal 1
    test startSection "left open" ;# @open
}
