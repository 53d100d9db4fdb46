function main() {
    test.log("before");  // @before
    tamrix.exit();
    test.log("never");
}

function cleanup() {
    test.log("cleanup");  // @cleanup
}
