proc condition {} {
    error "no answer"
}

proc main {} {
    if {[catch {waitFor {[condition]} 1000}]} {
        test log caught ;# @caught
    }
}
