package require modules_helper

proc main {} {
    modules_helper::check 7 ;# @main
    test compare [modules_helper::count] 1 ;# @count
}
