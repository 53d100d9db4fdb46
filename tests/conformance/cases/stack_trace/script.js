function inner() {
    return test.stackTrace();
}

function outer() {
    return inner();
}

function main() {
    test.compare(outer().length, 3);  // @depth
    test.compare(test.stackTrace(0, 1).length, 1);  // @most
}
