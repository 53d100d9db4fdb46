def pressed():
    test.skip("in the handler")


def main():
    startApplication("faulty")
    label = waitForObject("{type='QLabel'}", 5000)
    installEventHandler(label, "MouseButtonPress", "pressed")
    click(label)
    snooze(60)
    test.fail("the script goes on")


def cleanup():
    test.log("cleaned up")
