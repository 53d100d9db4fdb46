function main() {
    test.log("looping");  // @looping
    while (true);
}
