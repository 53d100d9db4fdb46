function main() {
    const context = startApplication("widgets");
    const age = Date.now() - context.startTime();
    test.verify(Math.abs(age) < 60000);  // @age
}
