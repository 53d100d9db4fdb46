import {add, twice} from "sums";

export async function main() {
    const list = [{price: 2}, {price: 3}];
    await null;
    const sum = add(list);  // @call
    const both = twice(sum);  // @after
    test.compare(both, 26, "the sum");  // @compare
    await fails();
}

async function fails() {
    await null;
    throw new Error("at last");  // @throw
}
