function main() {
    test.log("before");  // @before
    while (true);
}
