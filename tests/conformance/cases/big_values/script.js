function main() {
    const numbers = Array.from({length: 100000}, (_, index) => index);
    test.verify(numbers.every((number, index) => number === index), "a long list");  // @list
    const text = "x".repeat(1000000);
    test.compare(text.length, 1000000, "a long text");  // @text
    test.verify(text === Array(1000001).join("x"));  // @same
}
