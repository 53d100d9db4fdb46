proc attempt {args} {
    try {
        {*}$args
    } trap {TAMRIX ERROR} {message} {
        test log refused $message ;# @refused
    }
}

proc main {} {
    attempt test compare 1
    attempt test log
    attempt test startSection
    attempt test resultCount nothing
}
