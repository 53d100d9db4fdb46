function main() {
    source(findFile("scripts", "source_more.js"));
    test.compare(twice(21), 42);  // @twice
    report();  // @main
}
