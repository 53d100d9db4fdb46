function main() {
    const calls = [];
    const enough = () => calls.push(1) > 2;
    test.verify(waitFor(enough, 5000));  // @callable
    test.compare(calls.length, 3);  // @calls
    test.verify(waitFor("calls.length === 3", 1000));  // @text
    test.verify(!waitFor(() => false, 50));  // @over
}
