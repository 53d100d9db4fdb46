proc main {} {
    startApplication widgets
    test expect "{type='Window'}" {windowTitle Targets visible true} ;# @holds
    test expect "{type='Window'}" {windowTitle* Tar*} -comment "with a wildcard" ;# @comment
}
