package require modules_helper

proc main {} {
    test compare [modules_helper::count] 0 ;# @count
}
