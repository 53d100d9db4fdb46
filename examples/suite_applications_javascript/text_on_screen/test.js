// Clicks on what a calculator shows, by its text alone.

function main() {
    startApplication("calculator");
    const window = waitForObject(":Calculator");
    test.ocrTextPresent("Backspace", {timeout: 20000}, window);

    test.startSection("Keys");
    for (const key of ["7", "8", "Backspace", "9"])
        click(findOcrText(key, {}, window));
    test.expect(":Display", {text: "79"});
    click(findOcrText("Clear All", {}, window));
    test.expect(":Display", {text: "0"});
    test.endSection();

    test.ocrTextNotPresent("Save as", {}, window);
    const words = getAllOcrText({}, window).map(word => word.text);
    test.log(`${words.length} words: ${words.join(" ")}`);
}
