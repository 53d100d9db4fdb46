function handler() {
    throw new RangeError("in the handler");  // @handler
}

function main() {
    startApplication("widgets");
    const window = waitForObject("{type='Window'}");
    installEventHandler("Window", "WindowTitleChange", "handler");
    window.windowTitle = "another";
    snooze(0.3);
    test.log("it goes on");  // @on
}
