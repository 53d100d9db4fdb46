proc main {} {
    set context [startApplication widgets]
    set window [waitForObject "{type='Window'}"]
    test compare [$window add 2 3] 5 ;# @small
    test compare [$window add -2147483648 0] -2147483648 ;# @least
    test compare [$window add a b] ab ;# @texts
    test verify [expr {abs([$window windowOpacity] - 1) < 0.01}] ;# @fraction
    test compare [[Image new 1 1 0xff112233] getPixel 0 0] 4279312947 ;# @unsigned
    test verify [expr {[$context usedMemory] > 100000}] ;# @memory
}
