export function call(action) {
    action();  // @module
}
