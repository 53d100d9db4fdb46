proc inner {} {
    return [test stackTrace]
}

proc outer {} {
    return [inner]
}

proc main {} {
    test compare [llength [outer]] 3 ;# @depth
    test compare [llength [test stackTrace 0 1]] 1 ;# @most
}
