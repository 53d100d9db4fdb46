function attempt(call) {
    try {
        call();
        test.fail("it was taken");
    } catch (error) {
        test.log("refused", error.message);  // @refused
    }
}

function main() {
    startApplication("widgets");
    const window = waitForObject("{type='Window'}");
    attempt(() => window.windowTitel);
    attempt(() => window.add(1));
    attempt(() => { window.width = 7; });
}
