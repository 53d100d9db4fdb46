function good() {
    return 1;
}

function bad() {
    throw new RangeError("wrong");
}

function main() {
    test.exception(bad, "it raises");  // @raises
    test.exception(good, "it does not");  // @passes
}
