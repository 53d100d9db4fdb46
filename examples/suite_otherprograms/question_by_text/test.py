"""Answers the question by what can be read on the window."""


def main():
    application = startApplication("question")
    window = waitForObject({"type": "Window", "title": "Order"})

    test.ocrTextPresent("What shall it be?", {}, window)
    test.verify("Cancel" in getOcrText({}, window), "the whole text of the window")
    typeText(window, "Pretzels")
    test.ocrTextPresent("Pretzels", {}, window)

    application.expectExit()
    click(waitForOcrText("Cancel", {}, window))
    test.verify(waitFor(lambda: not application.isRunning(), 10000), "the dialog closes")
    test.compare(application.readStdout(), "")
