function main() {
    test.verify(currentApplicationContext() === null);  // @null
    test.compare(null, undefined);  // @equal
    test.log("without a detail", undefined);  // @left
}
