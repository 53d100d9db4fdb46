"""Computes with a calculator whose buttons and display it knows by their pictures alone."""


def press(*names):
    for name in names:
        click(waitForImage(name))


def main():
    startApplication("calculator")

    test.startSection("A sum")
    press("seven", "plus", "five", "equals")
    test.imagePresent("twelve", {"message": "7 + 5"})
    test.endSection()

    test.startSection("Where a picture is")
    window = waitForImage("clear_all")
    test.verify(window.width > 20, "the rectangle has a size")
    hover(window)
    highlightObject(window, 100)
    test.compare(object.globalBounds(window).x, window.x)
    # A region may be a rectangle, an object or a name.
    test.verify(not found("seven", window), "the key is not on the other one")
    test.endSection()

    test.startSection("Nothing is left")
    doubleClick(window)
    test.imageNotPresent("twelve", {"timeout": 2000, "message": "cleared"})
    test.endSection()


def found(name, region):
    try:
        findImage(name, {}, region)
    except LookupError:
        return False
    return True
