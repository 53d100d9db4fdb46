proc empty {count} {
    for {set i 0} {$i < $count} {incr i} {}
}

proc callNothing {count} {
    for {set i 0} {$i < $count} {incr i} {
        nothing
    }
}

proc callPlus {count} {
    for {set i 0} {$i < $count} {incr i} {
        plus 1000 2000
    }
}

proc best {loop {count 20000}} {
    set times {}
    for {set turn 0} {$turn < 50} {incr turn} {
        set start [now]
        $loop $count
        lappend times [expr {[now] - $start}]
    }
    return [expr {[::tcl::mathfunc::min {*}$times] / double($count)}]
}

proc main {} {
    report empty [best empty]
    report nothing [best callNothing]
    report plus [best callPlus]
}
