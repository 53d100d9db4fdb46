export function twice(n) {
    const result = n * 2;  // break
    return result;
}
