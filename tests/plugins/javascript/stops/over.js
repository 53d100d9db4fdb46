// Mode: next 1
function inner() {
    return 1;
}

function fail() {
    throw new Error("caught");
}

function main() {
    inner();
    try {
        fail();
    } catch (error) {
        inner();
    }
    [1, 2].forEach(n => inner());
    eval("inner();\ninner()");
}
