proc main {} {
    set results [list [test verify true] [test verify false] [test compare 1 1] [test compare 1 2]] ;# @four
    foreach result $results {
        if {$result} {
            test log true ;# @true
        } else {
            test log false ;# @false
        }
    }
}
