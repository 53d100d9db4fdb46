"""Types into a Qt Quick scene and clicks in it."""


def main():
    startApplication("scene")
    fill("{name='who' window={type='QQuickWindow'}}", "Ada")
    click("{name='greet'}")
    greeting = waitForObject("{name='greeting'}")
    test.verify(waitFor(lambda: greeting.text == "Hello, Ada", 3000), "greeted by name")
    test.compare(greeting.type, "QQuickText")
