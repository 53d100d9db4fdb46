// Mode: step
class Counter {
    constructor() {
        this.count = 0;
    }
    get next() {
        return ++this.count;
    }
}

function* numbers() {
    yield 1;
    yield 2;
}

async function later(value) {
    await null;
    return value;
}

async function main() {
    const counter = new Counter();
    counter.next;
    for (const n of numbers())
        counter.count += n;
    called(n => {
        counter.count += n;
    });
    let left = 2;
    while (left > 0)
        left--;
    const value = await later(3);
    return value;
}
