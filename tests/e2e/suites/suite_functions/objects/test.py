"""Every function that finds objects and asks them, against a real program."""
import os

SEVEN = "{type='Button' text='7'}"


def fails(kind, text, function, *arguments):
    try:
        function(*arguments)
    except kind as error:
        test.verify(text in str(error), "%r holds %r" % (str(error), text))
    else:
        test.fail("nothing was raised", text)


def main():
    startApplication("calculator")
    seven = waitForObject(SEVEN)
    display = waitForObject("{type='QLineEdit'}", 5000)

    test.startSection("Looking up")
    test.compare(waitForObject(seven, 1500.4), seven)
    test.compare(waitForObjectExists(SEVEN, 1000), seven)
    test.compare(findObject({"type": "Button", "text": "7"}), seven)
    test.verify(len(findAllObjects("{type='Button'}")) > 25)
    test.compare(findAllObjects("{type='Button' text='none'}"), [])
    test.compare(object.exists(SEVEN), True)
    test.compare(object.exists("{type='Button' text='none'}"), False)
    fails(LookupError, "{text='none' type='Button'}", waitForObject,
          "{type='Button' text='none'}", 200)
    fails(RuntimeError, "text", findObject, "{type='Button' text='none'}")
    test.endSection()

    test.startSection("Names")
    test.compare(findObject(repr(seven)), seven)
    for text in "text*='Clear*'", "text~='^Clear A'", "text='Clear All' window={type='Calculator'}":
        test.verify(findObject("{type='Button' %s}" % text).text.startswith("Clear"), text)
    test.compare(findObject("{type='Button' occurrence='2'}"), findAllObjects("{type='Button'}")[1])
    test.endSection()

    test.startSection("Asking")
    window = object.parent(seven)
    test.compare(typeName(seven), "Button")
    test.compare(window.type, "Calculator")
    test.verify(seven in list(object.children(window)))
    test.verify(window in object.topLevelObjects())
    test.compare(object.properties(seven)["text"], "7")
    bounds = object.globalBounds(seven)
    test.verify(bounds.width > 10 and bounds.height > 10)
    object.objectName(seven)
    test.compare([object.isPointer(seven), object.isReference(seven), object.isValue(seven),
                  object.isArray(seven)], [True, False, False, False])
    test.compare(cast(seven, "QToolButton"), seven)
    test.verify(cast(seven, "QLineEdit") is None)
    test.compare(object.convertTo(seven, "QWidget"), seven)
    fails(RuntimeError, "Unknown type Nonsense", cast, seven, "Nonsense")
    fails(RuntimeError, "Could not convert object to interface", object.queryInterface, seven, "X")
    test.compare(isNull(seven), False)
    test.endSection()

    test.startSection("Using")
    test.compare(seven.text, "7")
    test.compare(repr(seven.pos), "QPoint(%d, %d)" % (seven.x, seven.y))
    display.maxLength = 20
    test.compare(display.maxLength, 20)
    seven.text = "Seven"
    test.compare(seven.text, "Seven")
    seven.text = "7"
    display.selectAll()
    test.compare(display.selectedText, display.text, "the method ran")
    click(seven)
    test.verify(waitFor(lambda: display.text == "7", 2000))
    test.verify(waitFor("True"))
    snooze(0.05)
    highlightObject(seven, 100)
    highlightObject(SEVEN, 200, True)
    saveObjectSnapshot(window, "tree.xml")
    test.verify(os.path.getsize("tree.xml") > 1000)
    os.remove("tree.xml")
    fails(AttributeError, "Button", getattr, seven, "nonsense")
    test.endSection()

    closeWindow(window)
    test.verify(waitFor(lambda: not currentApplicationContext().isRunning(), 5000), "it ended")
    fails(RuntimeError, "", getattr, seven, "text")
