"""A program of one version of Qt starts one of the other."""


def main():
    for parent, child in ("5", "6"), ("6", "5"):
        first = startApplication("window %s %s" % (parent, child))
        click({"type": "QPushButton", "text": "of Qt " + parent})
        second = waitForApplicationLaunch(20000)
        test.verify(first.toolkitVersion().startswith("Qt %s." % parent))
        test.verify(second.toolkitVersion().startswith("Qt %s." % child))
        setApplicationContext(second)
        click({"type": "QPushButton", "text": "of Qt " + child})
        test.expect({"type": "QPushButton"}, {"text": "clicked"})
        setApplicationContext(first)
        test.expect({"type": "QPushButton"}, {"text": "clicked"})
        for context in first, second:
            test.verify("tamrix" not in context.readStderr(), "standard error stays clean")
            test.verify("incompatible" not in context.readStderr(), "of Qt's complaints, too")
