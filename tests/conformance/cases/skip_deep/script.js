function main() {
    try {
        helper();  // @main
    } catch (error) {
        if (error instanceof tamrix.FatalError)
            throw error;
        test.fail("caught");
    }
}

function helper() {
    test.skip("from far inside");  // @skip
}
