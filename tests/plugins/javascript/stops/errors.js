// What nothing catches stops where it is thrown, and what something catches does not.
function fail() {
    throw new Error("thrown");
}

function uncaught() {
    fail();
}

function caught() {
    try {
        fail();
    } catch (error) {
        return 1;
    }
}

function cleanedUp() {
    try {
        fail();
    } finally {
        test.log("cleaned");
    }
}

function ofTheLibrary() {
    findNothing();
}

function askedFor() {
    test.exception(() => fail());
}

async function rejected() {
    await null;
    fail();
}

async function awaited() {
    try {
        await rejected();
    } catch (error) {
        return 1;
    }
}

function skipped() {
    test.skip("no printer");
}

function ofTheEngine() {
    return [1].map(n => n.x.y);
}

async function behindOthers() {
    for (const each of [1])
        await rejected();
}

async function cleanedUpLater() {
    try {
        await rejected();
    } finally {
        test.log("cleaned");
    }
}

async function passedOn() {
    return rejected().then(() => 1);
}

async function caughtByAHandler() {
    return rejected().catch(() => 1);
}

async function caughtFurtherOut() {
    try {
        await behindOthers();
    } catch (error) {
        return 1;
    }
}

function inALoop() {
    for (const each of [1])
        fail();
}
