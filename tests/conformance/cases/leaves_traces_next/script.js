function main() {
    test.verify(!("leavesTracesLeft" in globalThis), "names of all modules");  // @names
    test.verify(!("leavesTracesLeft" in []), "the environment");  // @environment
    test.compare(tamrixinfo.testCase().split("/").pop(), "leaves_traces_next", "the folder");  // @folder
    test.verify(!("left" in test.log), "names of the script");  // @globals
}
