proc main {} {
    set path [findFile testdata find_file_data.tsv]
    test compare [file tail $path] find_file_data.tsv ;# @name
    try {
        findFile testdata no_such_file.tsv
    } trap {TAMRIX ERROR} {} {
        test log refused ;# @refused
    }
}
