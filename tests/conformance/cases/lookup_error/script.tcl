proc main {} {
    startApplication widgets
    try {
        waitForObject "{type='QPushButton' text='No such'}" 100
    } trap {TAMRIX LOOKUP} {} {
        test log caught ;# @caught
    }
    waitForObject "{type='QPushButton' text='No such'}" 100 ;# @uncaught
}
