function check(value) {
    return test.verify(value > 3, "big enough");  // @check
}

function main() {
    check(5);
    check(1);  // @main
}
