function condition() {
    throw new RangeError("no answer");
}

function main() {
    try {
        waitFor(condition, 1000);
    } catch (error) {
        if (error instanceof tamrix.Error)
            test.log("caught");  // @caught
    }
}
