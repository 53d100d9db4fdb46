function main() {
    test.log("\u00e4\u00f6\u00fc \u20ac \u4e2d\u6587");  // @plane
    test.log("\u{1f600} and \u{10ffff}");  // @beyond
    test.log("a tab\tand a\nnew line");  // @control
    test.log("a NUL\0in it");  // @nul
    test.log("\ufeffmark");  // @mark
    test.log("");  // @empty
}
