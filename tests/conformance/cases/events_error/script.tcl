proc handler {} {
    error "in the handler" ;# @handler
}

proc main {} {
    startApplication widgets
    set window [waitForObject {type Window}]
    installEventHandler Window WindowTitleChange handler
    $window configure -windowTitle another
    snooze 0.3
    test log "it goes on" ;# @on
}
