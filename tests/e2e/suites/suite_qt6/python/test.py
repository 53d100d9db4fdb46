"""Programs in Python."""


def main():
    for version in "5", "6":
        context = startApplication("window " + version)
        test.verify(context.toolkitVersion().startswith("Qt %s." % version))
        click({"type": "QPushButton", "text": "of Qt " + version})
        test.expect({"type": "QPushButton"}, {"text": "clicked"})
