"""Answers the question with the mouse, by what the button looks like."""


def main():
    application = startApplication("question")
    window = waitForObject({"type": "Window", "title": "Order"})

    typeText(window, "Pretzels")
    # The picture is looked for in the window alone, wherever that is.
    button = findImage("ok.png", {}, window)
    test.verify(button.x > window.x + window.width // 2, "it is the right one of the buttons")
    click(button)

    test.verify(waitFor(lambda: not application.isRunning(), 10000), "the dialog closes")
    test.compare(application.readStdout(), "Pretzels\n")
