function attempt(call) {
    try {
        call();
    } catch (error) {
        if (error instanceof tamrix.Error)
            test.log("refused", error.message);  // @refused
        else
            throw error;
    }
}

function main() {
    attempt(() => test.compare(1));
    attempt(() => test.log());
    attempt(() => test.startSection());
    attempt(() => test.resultCount("nothing"));
}
