function main() {
    try {
        source(findFile("scripts", "source_error_faulty.js"));
    } catch (error) {
        if (error instanceof tamrix.Error)
            test.log("caught");  // @caught
    }
}
