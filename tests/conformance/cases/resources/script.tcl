proc main {} {
    test compare [tamrixinfo testCaseName] resources ;# @case
    test verify [file isdirectory [tamrixinfo resultDir]] ;# @results
    test compare [file tail [pwd]] resources ;# @folder
}
