function main() {
    try {
        throw new RangeError("wrong");
    } catch (error) {
        test.log("caught", error.message);  // @caught
    }
    test.pass("it goes on");  // @on
}
