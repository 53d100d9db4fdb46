function main() {
    console.log("first");
    test.log("second");  // @second
    console.log("third\nfourth");
    console.error("fifth");
    tamrix.write("without an end of line");
    test.log("sixth");  // @sixth
    console.log("\u00e4\u20ac\u{1f600}");
}
