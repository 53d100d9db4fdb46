namespace import bdd::*

before_scenario {} {context} {
    test log "before [$context get scenario]" ;# @begin
}

after_scenario {} {context} {
    test log "after with [$context get count] pies" ;# @end
}

given "an empty order" {context} { ;# @step1
    $context set count 0
}

when "{int} pie(s) for {string} is/are ordered" {context count name} { ;# @step2
    $context set count [expr {[$context get count] + $count}]
    test log "for $name" ;# @order
}

then "{int} pies arrive" {context count} { ;# @step3
    test compare [$context get count] $count pies ;# @arrive
}

then "it costs {float}" {context price} { ;# @step4
    test compare $price 4.5 ;# @costs
}

when "these are ordered" {context} { ;# @step5
    foreach row [$context get table] {
        $context set count [expr {[$context get count] + [dict get $row count]}]
    }
}

when "the note says" {context} { ;# @step6
    $context set note [$context get text]
}

then "the note has {int} lines" {context count} { ;# @step7
    test compare [llength [split [$context get note] "\n"]] $count ;# @lines
}

step "an error is raised" {context} { ;# @step8
    error "in a step" ;# @error
}

step "this is not reached" {context} { ;# @step9
    test fail reached
}
