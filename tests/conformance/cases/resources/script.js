function main() {
    test.compare(tamrixinfo.testCaseName(), "resources");  // @case
    test.verify(tamrixinfo.resultDir().startsWith("/"));  // @results
    test.compare(tamrixinfo.testCase().split("/").pop(), "resources");  // @folder
}
