proc main {} {
    testSettings configure -waitForObjectTimeout 1234
    test compare [testSettings cget -waitForObjectTimeout] 1234 ;# @number
    testSettings configure -logScreenshotOnFail false
    test verify [expr {![testSettings cget -logScreenshotOnFail]}] ;# @flag
    try {
        testSettings configure -waitForObjectTimeOut 1
        test fail "a slip in the name was taken"
    } trap {TAMRIX MEMBER} {} {
        test log refused ;# @refused
    }
}
