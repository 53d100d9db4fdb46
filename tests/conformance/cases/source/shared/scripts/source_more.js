function twice(number) {
    return 2 * number;
}

function report() {
    test.log("from the other file");  // @report
}
