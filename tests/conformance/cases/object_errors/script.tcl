proc attempt {script} {
    if {[catch {uplevel $script} message]} {
        test log refused $message ;# @refused
    } else {
        test fail "it was taken"
    }
}

proc main {} {
    startApplication widgets
    set window [waitForObject "{type='Window'}"]
    attempt {$window windowTitel}
    attempt {$window add 1}
    attempt {$window configure -width 7}
}
