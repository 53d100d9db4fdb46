proc main {} {
    test verify [expr {[info procs ::puts] eq ""}] "names of all modules" ;# @names
    test verify [expr {![info exists ::env(TAMRIX_LEFT)]}] "the environment" ;# @environment
    test compare [file tail [pwd]] leaves_traces_next "the folder" ;# @folder
    test verify [expr {![info exists ::testGlobal]}] "names of the script" ;# @globals
}
