proc main {} {
    test log "a log entry" "its detail" ;# @log
    test warning "a warning" ;# @warning
    test pass "a pass" "its detail" ;# @pass
    test fail "a fail" "its detail" ;# @fail
    test xpass "an unexpected pass" ;# @xpass
    test xfail "an expected fail" ;# @xfail
    test fatal "a fatal error" ;# @fatal
    test verify [expr {1 < 2}] "a condition that holds" ;# @holds
    test verify [expr {2 < 1}] "one that does not" ;# @not
    test xverify [expr {2 < 1}] "known not to hold" ;# @known
    test compare a a "equal texts" ;# @equal
    test compare a b "different texts" ;# @different
    test xcompare a b "known to differ" ;# @differ
}
