function main() {
    const number = 3;
    test.exception("failWith(number)", "it raises");  // @raises
    test.exception("1 + 1", "it does not");  // @passes
}

function failWith(number) {
    throw new RangeError(`number ${number}`);
}
