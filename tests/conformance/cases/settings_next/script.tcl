proc main {} {
    test compare [testSettings cget -waitForObjectTimeout] 20000 ;# @number
}
