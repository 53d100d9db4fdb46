"""Answers the question of a GTK program with the keyboard, and reads what the program prints."""


def main():
    application = startApplication("question")
    window = waitForObject({"type": "Window", "title": "Order"})
    test.compare(window.pid, application.pid())

    typeText(window, "Spätzle für 3 €")
    press(window, "Ctrl+A")
    press(window, "Ctrl+X")
    press(window, "Ctrl+V")
    press(window, "Return")

    test.verify(waitFor(lambda: not application.isRunning(), 10000), "the dialog closes")
    test.compare(application.readStdout(), "Spätzle für 3 €\n")
