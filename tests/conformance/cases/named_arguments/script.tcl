proc main {} {
    test compare 1 1 -comment "by name" ;# @name
    test log "the message" -detail "the detail" ;# @order
}
