proc main {} {
    set context [startApplication widgets]
    test verify [$context isRunning] ;# @running
    test verify [expr {[$context pid] > 0}] ;# @pid
    test compare [[currentApplicationContext] name] [$context name] ;# @current
    test compare [llength [applicationContextList]] 1 ;# @list
}
