function main() {
    testSettings.throwOnFailure = true;
    try {
        test.compare(1, 2, "the first");  // @first
    } catch (error) {
        if (error instanceof tamrix.VerificationError)
            test.log("caught");  // @caught
    }
    test.verify(false, "the second");  // @second
    test.log("never");
}

function cleanup() {
    test.log("cleanup");  // @cleanup
}
