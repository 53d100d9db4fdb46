function main() {
    globalThis.leavesTracesLeft = true;
    Array.prototype.leavesTracesLeft = true;
    test.log.left = true;
    test.startSection("left open");  // @open
}
