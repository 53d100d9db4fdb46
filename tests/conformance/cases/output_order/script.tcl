proc main {} {
    puts first
    test log second ;# @second
    puts "third\nfourth"
    puts stderr fifth
    puts -nonewline "without an end of line"
    test log sixth ;# @sixth
    puts "\u00e4\u20ac\U0001f600"
}
