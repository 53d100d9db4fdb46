function inner(value) {
    throw new RangeError("no " + value);  // @inner
}

function outer() {
    inner("number");  // @outer
}

function main() {
    outer();  // @main
}
