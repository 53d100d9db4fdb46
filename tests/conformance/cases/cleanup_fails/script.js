function main() {
    throw new RangeError("in main");  // @main
}

function cleanup() {
    throw new RangeError("in cleanup");  // @cleanup
}
