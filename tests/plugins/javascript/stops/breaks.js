// Mode: run
// Then: next step return step
import {twice} from "./library.js";

function sum(n) {
    let total = 0;
    for (let i = 0; i < n; i++)
        total += twice(i);
    return total;
}

export function main() {
    const first = sum(1);
    const second = first + 1;
    return second;  // break
}
