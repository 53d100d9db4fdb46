function empty(count) {
    for (let i = 0; i < count; ++i)
        ;
}

function callNothing(count) {
    for (let i = 0; i < count; ++i)
        nothing();
}

function callPlus(count) {
    for (let i = 0; i < count; ++i)
        plus(1000, 2000);
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
    report("nothing", best(callNothing));
    report("plus", best(callPlus));
}
