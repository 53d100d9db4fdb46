proc anotherProcedure {} {
    test log "never, but long enough for a script that could hold a procedure"
}
