# Finds its objects by names that are variables of a namespace.

source [findFile scripts names.tcl]

proc keys {text} {
    foreach key $text {
        click [names::button $key]
    }
}

proc main {} {
    startApplication calculator

    test startSection "Names are variables"
    keys {7 + 5}
    click $names::equals_button
    test expect $names::display {text 12}
    test endSection

    test startSection "and texts, as in verification points and expressions"
    click :clear_all_button
    test expect :display {text 0}
    click "{type='Button' text='1' window=':window'}"
    test expect names::display {text 1}
    test endSection

    test startSection "What a name stands for, and the other way round"
    test compare [objectMap realName :display] "{type='QLineEdit' window={type='Calculator'}}"
    test compare [objectMap symbolicName $names::equals_button] :equals_button
    test verify [expr {":window" in [objectMap symbolicNames]}]
    test endSection
}
