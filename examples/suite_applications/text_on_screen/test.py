"""Clicks on what a calculator shows, by its text alone."""


def main():
    startApplication("calculator")
    window = waitForObject(":Calculator")
    test.ocrTextPresent("Backspace", {"timeout": 20000}, window)

    test.startSection("Keys")
    for key in ("7", "8", "Backspace", "9"):
        click(findOcrText(key, {}, window))
    test.expect(":Display", {"text": "79"})
    click(findOcrText("Clear All", {}, window))
    test.expect(":Display", {"text": "0"})
    test.endSection()

    test.ocrTextNotPresent("Save as", {}, window)
    words = [word["text"] for word in getAllOcrText({}, window)]
    test.log("%d words: %s" % (len(words), " ".join(words)))
