function main() {
    startApplication("widgets");
    try {
        waitForObject("{type='QPushButton' text='No such'}", 100);
    } catch (error) {
        if (error instanceof tamrix.LookupError)
            test.log("caught");  // @caught
    }
    waitForObject("{type='QPushButton' text='No such'}", 100);  // @uncaught
}
