proc main {} {
    startApplication widgets
    set window [waitForObject {type Window}]
    set ::seen 0
    installEventHandler Window WindowTitleChange [list incr ::seen]
    $window configure -windowTitle another
    test verify [waitFor {$::seen > 0} 5000] ;# @seen
}
