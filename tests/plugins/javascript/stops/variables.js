const shared = {a: 1, "b c": [1, 2, {deep: true}]};
class Point {
    constructor(x) {
        this.x = x;
    }
    get size() {
        throw new Error("not to be called");
    }
}

function look(given, ...rest) {
    let text = "it's";
    const map = new Map([["key", new Set([1])]]), point = new Point(2);
    const big = 2n ** 70n, none = undefined, long = "x".repeat(500), self = [];
    self.push(self);
    const key = {a: 1}, table = new Map([[key, 1], [{a: 1}, {b: 2}], [3, 4]]);
    const many = new Set(Array.from({length: 1000}, (_, n) => n));
    Map.prototype.forEach = Set.prototype.forEach = () => { throw new Error("not to be called"); };
    for (const each of [7]) {
        breakHere();
    }
    return text;
}

function breakHere() {
    return 1;  // break
}

function main() {
    test.log(look(null, 1, 2));
}
