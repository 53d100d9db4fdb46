function main() {
    test.log("before");  // @before
    test.skip("not here", "the reason");  // @skip
    test.log("never");
}

function cleanup() {
    test.log("cleanup");  // @cleanup
}
