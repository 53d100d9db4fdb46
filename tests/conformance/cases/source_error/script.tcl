proc main {} {
    if {[catch {source [findFile scripts source_error_faulty.tcl]}]} {
        test log caught ;# @caught
    }
}
