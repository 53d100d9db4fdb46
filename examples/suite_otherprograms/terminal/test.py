"""Types into a terminal and pastes with the mouse what was selected there."""


def main():
    application = startApplication("terminal -e 'cat; sleep 60'")
    window = waitForObject({"type": "Window", "class": "XTerm"})

    typeText(window, "hello\n")
    before = object.grabScreenshot(window)
    doubleClick(window, 12, 8)
    click(window, 12, 8, "middle")
    test.verify(waitFor(lambda: object.grabScreenshot(window) != before, 5000), "the word is pasted")

    window.close()
    test.verify(waitFor(lambda: not application.isRunning(), 10000), "the terminal closes")
