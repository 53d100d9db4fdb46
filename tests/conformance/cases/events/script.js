function main() {
    startApplication("widgets");
    const window = waitForObject("{type='Window'}");
    const seen = [];
    installEventHandler("Window", "WindowTitleChange", () => seen.push(1));
    window.windowTitle = "another";
    test.verify(waitFor(() => seen.length > 0, 5000));  // @seen
}
