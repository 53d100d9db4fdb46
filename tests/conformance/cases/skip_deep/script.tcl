proc main {} {
    try {
        helper ;# @main
    } on error {} {
        test fail caught
    }
}

proc helper {} {
    test skip "from far inside" ;# @skip
}
