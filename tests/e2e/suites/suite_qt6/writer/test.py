"""A word processor that hides its menus while one writes."""

import os
import tempfile


def main():
    # A second one for the same folder would hand over to the first and end.
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
        os.environ["TMPDIR"] = folder
        write()


def write():
    startApplication("focuswriter")
    editor = waitForObject("{type='QTextEdit'}")
    words = waitForObjectExists("{type='QLabel' text~='^Words'}")
    typeText(editor, "Two words")
    test.expect(editor, {"plainText": "Two words"})
    test.expect(words, {"text": "Words: 2"})
    press(editor, "Ctrl+A")
    press(editor, "Delete")
    test.expect(editor, {"plainText": ""})
    press(editor, "Ctrl+Z")
    test.expect(editor, {"plainText": "Two words"})
    press(editor, "Ctrl+F")
    fill("{type='QLineEdit' window={type='FindDialog'}}", "words")
    click("{text='Find' type='QPushButton' window={type='FindDialog'}}")
    closeWindow("{type='FindDialog'}")
    press(editor, "Delete")
    test.expect(editor, {"plainText": "Two "})
    closeWindow("{type='Window'}")
    click("{type='QPushButton' text='Discard'}")
