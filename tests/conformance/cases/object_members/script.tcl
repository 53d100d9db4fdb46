proc main {} {
    startApplication widgets
    set window [waitForObject "{type='Window'}"]
    test compare [$window windowTitle] Targets ;# @read
    $window configure -windowTitle "\u00c4nderung"
    test compare [$window cget -windowTitle] "\u00c4nderung" ;# @written
    test verify [$window visible] ;# @flag
    test compare [$window spread Wide 2] widewide ;# @method
    test verify [expr {[[$window geometry] width] > 100}] ;# @nested
}
