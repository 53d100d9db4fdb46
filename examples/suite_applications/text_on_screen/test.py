"""Reads what a calculator shows, and clicks what is written there: nothing is asked of its objects."""

# Single words here and there instead of a block of text.
SPARSE = {"tesseract": {"psm": 11}}


def main():
    startApplication("calculator")
    test.ocrTextPresent("Backspace", SPARSE)
    test.verify("Clear All" in getOcrText(), "all text in its lines")

    test.startSection("A sum, by text alone")
    for key in ("7", "8", "Backspace", "9"):
        click(waitForOcrText(key, SPARSE))
    display = waitForObject(":Display")
    test.ocrTextPresent("79", SPARSE, display)
    click(findOcrText("Clear All"))
    test.ocrTextNotPresent("79", SPARSE, display)
    test.endSection()

    words = [word["text"] for word in getAllOcrText(SPARSE)]
    test.log("%d words: %s" % (len(words), " ".join(words)))
