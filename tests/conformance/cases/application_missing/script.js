function main() {
    try {
        startApplication("no_such_program");
    } catch (error) {
        if (error instanceof tamrix.Error)
            test.log("caught");  // @caught
    }
}
