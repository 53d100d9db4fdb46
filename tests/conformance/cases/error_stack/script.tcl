proc inner {value} {
    error "no $value" ;# @inner
}

proc outer {} {
    inner number ;# @outer
}

proc main {} {
    outer ;# @main
}
