"""Every function for events and input, against a real program."""

clicks = []


def clicked(*_):
    clicks.append(1)


def fails(text, function, *arguments):
    try:
        function(*arguments)
    except RuntimeError as error:
        test.verify(text in str(error), "%r holds %r" % (str(error), text))
    else:
        test.fail("nothing was raised", text)


def main():
    startApplication("calculator")
    display = waitForObject("{type='QLineEdit'}")
    seven = waitForObject("{type='Button' text='7'}")

    test.startSection("Mouse")
    mouseMove(seven, 5, 5)
    mousePress(seven)
    mouseRelease(seven)
    test.verify(waitFor(lambda: display.text == "7", 3000), "pressed and released in the middle")
    mousePress(seven, 5, 5, 1, 0)
    mouseRelease(seven, 5, 5, 1, 0)
    test.verify(waitFor(lambda: display.text == "77", 3000), "at a point")
    fails("Overload not found", mouseMove, seven)
    test.endSection()

    test.startSection("Places of the screen")
    click({"type": "Button", "text": "Clear All"})
    place = object.globalBounds(seven)
    click(place)
    test.verify(waitFor(lambda: display.text == "7", 3000), "clicked")
    doubleClick(place)
    test.verify(waitFor(lambda: display.text == "777", 3000), "clicked twice")
    mouseMove(place, 4, 4)
    mousePress(place)
    mouseRelease(place)
    test.verify(waitFor(lambda: display.text == "7777", 3000), "pressed and released")
    digits = object.globalBounds(display)
    hover(digits)
    drag(digits, digits.width - 6, 10, 20 - digits.width, 0)
    test.verify(waitFor(lambda: display.selectedText != "", 3000), "dragged over the digits")
    highlightObject(digits, 100)
    click({"type": "Button", "text": "Clear All"})
    click(seven)
    click(seven)
    test.endSection()

    test.startSection("Keys")
    backspace = waitForObject("{type='Button' text='Backspace'}")
    backspace.setFocus()
    keyPress("Space")
    keyRelease("Space")
    test.verify(waitFor(lambda: display.text == "7", 3000), "a key on the focused button")
    fails("One string argument expected", keyPress)
    test.endSection()

    test.startSection("Handlers")
    installEventHandler(seven, "MouseButtonPress", clicked)
    click(seven)
    test.verify(waitFor(lambda: len(clicks) == 1, 3000), "the handler ran")
    uninstallEventHandler(seven, "MouseButtonPress", clicked)
    click(seven)
    waitFor(lambda: display.text == "777", 3000)
    test.compare(len(clicks), 1, "and no more")
    installEventHandler("Button", "MouseButtonPress", "clicked")
    click("{type='Button' text='1'}")
    test.verify(waitFor(lambda: len(clicks) == 2, 3000), "by type and by name")
    uninstallEventHandler("Button", "MouseButtonPress", "clicked")
    installEventHandler("MouseButtonRelease", clicked)
    click("{type='Button' text='2'}")
    test.verify(waitFor(lambda: len(clicks) >= 3, 3000), "of all objects")
    uninstallEventHandler("MouseButtonRelease", clicked)
    test.endSection()

    test.startSection("Events")
    sendEvent("QMouseEvent", seven, "MouseButtonPress", 5, 5, 1, 0)
    sendEvent("QMouseEvent", seven, "MouseButtonRelease", 5, 5, 1, 0)
    test.verify(waitFor(lambda: display.text.endswith("7"), 3000))
    fails("Unknown event type Nonsense", sendEvent, "Nonsense", seven)
    test.endSection()

    fails("Couldn't open file none", readGesture, "none")
