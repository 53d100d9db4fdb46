function prepare() {
    throw new RangeError("too early");  // @prepare
}

prepare();  // @load

function main() {
    test.log("never");
}
