"""Types a sum into a program that completes what is typed, and looks at its answer."""


def main():
    startApplication("speedcrunch")
    editor = waitForObject("{type='Editor'}")
    typeText(editor, "12*12")
    press(editor, "Return")
    display = waitForObject("{type='ResultDisplay'}")
    test.verify(waitFor(lambda: "144" in display.plainText, 5000), "12 times 12")
    selectItem("{type='QMenuBar'}", ["Edit", "Clear Expression"])
    test.verify(waitFor(lambda: editor.plainText == "", 5000), "a menu clears the editor")
