# A terminal: text, the low-level mouse, and what is selected with it.
import os
import tempfile


def shows_change(window, act):
    """Does something and waits until the window looks otherwise: a terminal answers no pings."""
    before = object.grabScreenshot(window)
    act()
    test.verify(waitFor(lambda: object.grabScreenshot(window) != before, 60000))


def main():
    # Of its own: the suite runs with and without a window manager at the same time.
    folder = tempfile.TemporaryDirectory()
    file = os.path.join(folder.name, "typed.txt")
    a = startApplication("terminal -e 'cat > \"%s\"'" % file)
    w = waitForObject({"type": "Window", "class": "XTerm"})
    shows_change(w, lambda: typeText(w, "first line ÄÖ€\n\"second\"\n"))
    snooze(0.5)
    # Select the first word and paste it, then the line.
    shows_change(w, lambda: doubleClick(w, 12, 10))
    shows_change(w, lambda: click(w, 12, 10, "middle"))
    typeText(w, "\n")
    snooze(0.5)
    shows_change(w, lambda: drag(w, 3, 10, 200, 0))

    def paste():
        mousePress(w, 12, 10, 4)
        mouseRelease(w, 12, 10, 4)

    shows_change(w, paste)
    typeText(w, "\n")
    press(w, "Ctrl+D")
    test.verify(waitFor(lambda: not a.isRunning(), 60000))
    with open(file, encoding="utf-8") as typed:
        lines = typed.read().split("\n")
    folder.cleanup()
    test.compare(lines[0], "first line ÄÖ€")
    test.compare(lines[1], '"second"')
    test.compare(lines[2], "first")
    test.verify(lines[3].startswith("first line ÄÖ€"), lines[3])
