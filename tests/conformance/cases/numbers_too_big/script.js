function main() {
    startApplication("widgets");
    const window = waitForObject("{type='Window'}");
    for (const number of [2147483648, 9007199254740993n, 2.7]) {
        try {
            window.spread("Wide", number);
            test.fail("it was cut");
        } catch (error) {
            test.log("refused");  // @refused
        }
    }
}
