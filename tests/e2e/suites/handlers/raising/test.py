def pressed(*_):
    raise ValueError("in a callable")  # here


def released():
    {}["in a function"]  # here


def main():
    startApplication("faulty")
    label = waitForObject("{type='QLabel'}", 5000)
    installEventHandler(label, "MouseButtonPress", pressed)
    installEventHandler(label, "MouseButtonRelease", "released")
    click(label)
    test.verify(waitFor(lambda: test.resultCount("warnings") == 2, 10000), "both were told")
    test.log("goes on")
