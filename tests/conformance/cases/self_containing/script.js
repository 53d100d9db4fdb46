function main() {
    const values = [1];
    values.push(values);
    try {
        findObject({type: values});
    } catch (error) {
        test.log("refused");  // @refused
    }
    test.pass("it goes on");  // @on
}
