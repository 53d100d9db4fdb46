namespace eval modules_helper {
    variable calls {}

    proc check {value} {
        variable calls
        lappend calls $value
        test compare $value 7 "in the module" ;# @check
    }

    proc count {} {
        variable calls
        return [llength $calls]
    }
}
