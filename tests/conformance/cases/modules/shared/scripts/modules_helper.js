const calls = [];

export function check(value) {
    calls.push(value);
    test.compare(value, 7, "in the module");  // @check
}

export function count() {
    return calls.length;
}
