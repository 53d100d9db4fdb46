proc main {} {
    startApplication widgets
    set window [waitForObject {type Window}]
    test verify [expr {$window eq [findObject "{type='Window'}"]}] ;# @same
    test verify [object exists "{type='QTabWidget'}"] ;# @exists
    test verify [expr {![object exists {type QTabWidget objectName other}]}] ;# @not
    test compare [llength [findAllObjects "{type='QTabWidget'}"]] 1 ;# @all
    test compare [typeName $window] Window ;# @type
    test compare [dict get [object properties $window] windowTitle] Targets ;# @properties
    test verify [expr {[object parent $window] eq ""}] ;# @parent
}
