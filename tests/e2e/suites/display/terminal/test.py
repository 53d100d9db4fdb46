# A terminal: text, the low-level mouse, and what is selected with it.
import os


def main():
    file = os.path.abspath("typed.txt")
    a = startApplication("terminal -e 'cat > \"%s\"'" % file)
    w = waitForObject({"type": "Window", "class": "XTerm"})
    typeText(w, "first line ÄÖ€\n\"second\"\n")
    # Select the first word and paste it.
    doubleClick(w, 12, 10)
    click(w, 12, 10, "middle")
    typeText(w, "\n")
    drag(w, 3, 10, 200, 0)
    mousePress(w, 12, 10, 4)
    mouseRelease(w, 12, 10, 4)
    typeText(w, "\n")
    press(w, "Ctrl+D")
    test.verify(waitFor(lambda: not a.isRunning(), 20000))
    with open(file, encoding="utf-8") as typed:
        lines = typed.read().split("\n")
    os.remove(file)
    test.compare(lines[0], "first line ÄÖ€")
    test.compare(lines[1], '"second"')
    test.compare(lines[2], "first")
    test.verify(lines[3].startswith("first line ÄÖ€"), lines[3])
