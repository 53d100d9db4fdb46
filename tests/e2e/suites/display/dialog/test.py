# A program made with GTK gets any text, keys with modifiers, and tells whether it hangs.
import os
import signal

TEXT = "Grüße, Ωmega! @{}[]~ €ß日本 ABC"


def main():
    a = startApplication("dialog --entry --title Question --text Well?")
    w = waitForObject({"type": "Window", "title*": "Ques*"})
    test.compare(w.title, "Question")
    test.compare(getattr(w, "class"), "Zenity")
    test.compare(w.pid, a.pid())
    test.expect(w, {"visible": True, "popup": False, "pid": a.pid()})
    typeText(w, TEXT)
    before = object.grabScreenshot(w)
    test.verify(before.width == w.width and before.height == w.height)
    press(w, "Ctrl+A")
    test.verify(waitFor(lambda: object.grabScreenshot(w) != before, 20000), "the text is selected")
    press(w, "Ctrl+C")
    press(w, "End")
    press(w, "Ctrl+V")

    # The menu of the field is a window of its own.
    click(w, w.width // 2, w.height // 2 - 10, "right")
    menu = waitForObject({"type": "Window", "popup": True})
    test.compare(menu.windowType, "popup_menu")
    test.compare(menu.pid, a.pid())
    press(menu, "Escape")
    test.verify(waitFor(lambda: not object.exists({"popup": True}), 20000))

    test.verify(not a.isFrozen(5))
    os.kill(a.pid(), signal.SIGSTOP)
    test.verify(a.isFrozen(1))
    os.kill(a.pid(), signal.SIGCONT)

    keyPress("Shift")
    keyPress("a")
    keyRelease("a")
    keyRelease("Shift")
    press(w, "Return")
    test.verify(waitFor(lambda: not a.isRunning(), 20000))
    test.compare(a.readStdout(), TEXT * 2 + "A\n")
