proc main {} {
    puts first
    test log second ;# @second
    puts "third\nfourth"
    puts stderr fifth
    puts -nonewline "without an end of line"
    test log sixth ;# @sixth
    puts "ä\u20ac😀"
}
