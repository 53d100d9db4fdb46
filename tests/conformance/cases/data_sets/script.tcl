proc main {} {
    foreach record [testData dataset data_sets_people.tsv] {
        set name [testData field $record Name]
        test log "$name is [testData field $record Age]" ;# @person
        test compare [testData field $record 0] $name ;# @column
    }
    test compare [testData fieldNames $record] {Name Age} ;# @names
    set odd [lindex [testData dataset data_sets_odd.csv] 0]
    test compare [lmap column {1 twice} {testData field $odd $column}] {2 3} ;# @twice
    foreach suffix {xls xlsx} {
        set sheet [testData dataset data_sets_sheet.$suffix]
        set second [lmap column {name 2} {testData field [lindex $sheet 1] $column}]
        test compare [list [llength $sheet] {*}$second] [list 2 Müller "two\nlines"] ;# @sheet
    }
}
