function init() {
    throw new RangeError("not ready");  // @init
}

function main() {
    test.log("never");
}

function cleanup() {
    test.log("cleanup");  // @cleanup
}
