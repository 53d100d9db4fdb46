proc main {} {
    try {
        startApplication no_such_program
    } trap {TAMRIX ERROR} {} {
        test log caught ;# @caught
    }
}
