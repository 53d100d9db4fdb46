# Several windows of one program: names, occurrences, what covers what, and what is around them.


def main():
    a = startApplication("pair")
    first = waitForObject({"type": "Window", "title": "first"})
    second = waitForObject({"title": "second"})
    test.compare(first.pid == second.pid, False)
    test.compare(len(object.topLevelObjects()), 2)
    test.compare(repr(second), "{title='second' type='Window'}")
    test.compare(waitForObject({"class": "XTerm", "type": "Window", "occurrence": 2}).title,
                 max([first, second], key=lambda window: hash(window)).title)
    test.verify(first != second and first == waitForObject("{title='first'}"))
    # Each comes to the front when it is clicked.
    for window in [first, second, first]:
        click(window)
        typeText(window, "x")
        test.verify(object.exists({"title": window.title, "visible": True}))
    closeWindow(second)
    test.verify(waitFor(lambda: not object.exists("{title='second'}"), 20000))
    try:
        click(second)
    except Exception as error:
        test.log("gone", str(error))
    first.close()
    test.verify(waitFor(lambda: not a.isRunning(), 20000))
