# What can't be done is told.
import os
import signal


def tell(what, call):
    try:
        test.fail(what, repr(call()))
    except BaseException as error:
        test.log(what, "%s: %s" % (type(error).__name__, error))


def main():
    tell("no window", lambda: startApplication("silent 60", "", -1, 500))
    tell("ended", lambda: startApplication("dialog --no-such-option"))
    a = startApplication("calculator")
    w = waitForObject({"type": "Window", "title": "Calculator"})
    tell("widget", lambda: click({"type": "QPushButton", "text": "7"}))
    tell("near miss", lambda: waitForObject({"type": "Window", "title": "Calc"}, 100))
    tell("fill", lambda: fill(w, "text"))
    tell("item", lambda: selectItem(w, "text"))
    tell("clipboard", lambda: clipboardText())
    tell("button", lambda: click(w, 3))
    tell("key", lambda: press(w, "Ctrl+Nothing"))
    tell("outside", lambda: click(w, 5000, 2))
    tell("events", lambda: installEventHandler(w, "QMouseEvent", "handler"))
    tell("pixmap", lambda: w.nothing)
    os.kill(a.pid(), signal.SIGSEGV)
    tell("crash", lambda: click(w))
