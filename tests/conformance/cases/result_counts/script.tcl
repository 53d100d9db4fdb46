proc main {} {
    test pass one ;# @one
    test pass two ;# @two
    test fail three ;# @three
    foreach category {passes fails xpasses errors warnings logs tests} {
        test log "$category: [test resultCount $category]" ;# @count
    }
}
