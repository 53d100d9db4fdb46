function empty(count) {
    for (let i = 0; i < count; ++i)
        ;
}

// What the compiler of the engine does not put into the loop.
function bare(count) {
    for (let i = 0; i < count; ++i)
        escape("a", "b");
}

function call(count) {
    for (let i = 0; i < count; ++i)
        nothing(1000, 2000);
}

function best(loop, count = 20000) {
    let least = Infinity;
    for (let turn = 0; turn < 50; ++turn) {
        const start = Number(now());
        loop(count);
        least = Math.min(least, Number(now()) - start);
    }
    return least / count;
}

function main() {
    report("empty", best(empty));
    report("bare", best(bare));
    report("call", best(call));
}
