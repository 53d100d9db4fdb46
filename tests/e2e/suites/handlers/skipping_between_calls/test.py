def pressed(*_):
    test.skip("in the handler")


def main():
    startApplication("faulty")
    label = waitForObject("{type='QLabel'}", 5000)
    installEventHandler(label, "MouseButtonPress", pressed)
    click(label)
    # The handler runs at the end of one of these calls.
    for _ in range(10000):
        label.text
    test.fail("the script goes on")
