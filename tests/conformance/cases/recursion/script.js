function again(depth) {
    return again(depth + 1) + 1;
}

function main() {
    try {
        again(0);
    } catch (error) {
        test.log("caught");  // @caught
    }
}
