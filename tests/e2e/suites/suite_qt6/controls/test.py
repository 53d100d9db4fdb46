"""Controls of Qt Quick."""


def main():
    context = startApplication("controls")
    test.verify(context.toolkitVersion().startswith("Qt 6."))
    fill("{name='who'}", "Ada")
    click("{type='Button' text='Greet'}")
    test.expect("{name='result'}", {"text": "Ada"})
    check("{name='loud'}")
    click("{type='Button' text='Greet'}")
    test.expect("{name='result'}", {"text": "Ada!"})
    selectItem("{name='colour'}", "blue")
    test.expect("{name='colour'}", {"currentText": "blue", "currentIndex": 2})
    selectItem("{type='MenuBar'}", "File.Rename")
    test.expect("{name='result'}", {"text": "renamed"})
