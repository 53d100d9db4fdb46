proc colour {text} {
    return [string toupper $text]
}

bdd::parameter_type colour red|green colour

bdd::before_scenario @special {context} {
    test log "only for the tag" ;# @special
}

bdd::after_feature {} {context} {
    test log "done with [$context get feature]" ;# @done
}

bdd::given "a {colour} light" {context value} { ;# @step10
    test log $value ;# @light
}

bdd::given "something to do" {context} { ;# @step11
    bdd::pending later ;# @pending
}
