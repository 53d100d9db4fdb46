# The same by keys and by mouse looks the same.


def picture(window):
    mouseMove(1, 1)
    snooze(0.3)
    return object.grabScreenshot(window)


def main():
    a = startApplication("calculator")
    w = waitForObject({"type": "Window", "class": "XCalc"})
    empty = picture(w)
    for key in ["7", "8", "*", "6", "Return"]:
        press(w, key)
    by_keys = picture(w)
    test.verify(by_keys != empty, "keys work")
    width, height = w.width, w.height

    def button(row, column):
        # Five columns and eleven rows below the display.
        click(w, round((26 + 44 * column) / 245 * width), round((92 + 30 * row) / 410 * height))

    clear, seven, eight, times, six, equals = (0, 4), (7, 1), (7, 2), (7, 4), (8, 3), (10, 4)
    for place in [clear, seven, eight, times, six, equals]:
        button(*place)
    test.verify(picture(w) == by_keys, "the mouse works")
    highlightObject(w, 200)
    bounds = object.globalBounds(w)
    test.compare([bounds.x, bounds.y, bounds.width, bounds.height], [w.x, w.y, width, height])
    closeWindow(w)
    test.verify(waitFor(lambda: not a.isRunning(), 20000))
    test.exception(lambda: w.title)
