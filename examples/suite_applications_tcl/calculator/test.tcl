# Clicks the buttons of a calculator and reads its display.

proc keys {args} {
    foreach key $args {
        click [dict create type Button text $key window :Calculator]
    }
}

proc main {} {
    startApplication calculator
    set display [waitForObject :Display]
    test vp display.vp "as it starts"

    test startSection "Sums"
    keys 7 + 5 =
    test expect $display {text 12} -comment "7 + 5"
    keys Sqrt
    test expect $display {text* 3.4641*} -comment "its root"
    test endSection

    test startSection "Memory"
    keys MS
    click {type Button text {Clear All}}
    test expect $display {text 0} -comment "cleared"
    keys MR
    test expect $display {text* 3.4641*} -comment "recalled"
    test endSection

    test verify [$display readOnly] "nobody types into the display"
}
