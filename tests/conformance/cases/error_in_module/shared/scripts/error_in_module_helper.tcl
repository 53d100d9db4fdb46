proc callBack {function} {
    $function ;# @module
}
