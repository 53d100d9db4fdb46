# Clicks on what a calculator shows, by its text alone.

proc main {} {
    startApplication calculator
    set window [waitForObject :Calculator]
    test ocrTextPresent Backspace {timeout 20000} $window

    test startSection "Keys"
    foreach key {7 8 Backspace 9} {
        click [findOcrText $key {} $window]
    }
    test expect :Display {text 79}
    click [findOcrText "Clear All" {} $window]
    test expect :Display {text 0}
    test endSection

    test ocrTextNotPresent "Save as" {} $window
    set words {}
    foreach word [getAllOcrText {} $window] {
        lappend words [dict get $word text]
    }
    test log "[llength $words] words: [join $words]"
}
