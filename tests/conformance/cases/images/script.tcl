proc main {} {
    set image [Image new 4 3 red]
    test compare [$image width] 4 ;# @width
    test compare [$image getPixelRGBA 1 1] {255 0 0 255} ;# @pixel
    $image setPixel 1 1 0 255 0
    test compare [$image getPixelRGBA 1 1] {0 255 0 255} ;# @changed
    set copy [$image copy]
    test verify [$copy equals $image] ;# @copy
}
