proc main {} {
    foreach record [testData dataset data_sets_people.tsv] {
        set name [testData field $record Name]
        test log "$name is [testData field $record Age]" ;# @person
        test compare [testData field $record 0] $name ;# @column
    }
    test compare [testData fieldNames $record] {Name Age} ;# @names
}
