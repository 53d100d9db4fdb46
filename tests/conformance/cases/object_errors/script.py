import tamrix


def attempt(call):
    try:
        call()
        test.fail("it was taken")
    except (AttributeError, TypeError, tamrix.Error) as error:
        test.log("refused", str(error))  # @refused


def main():
    startApplication("widgets")
    window = waitForObject("{type='Window'}")
    attempt(lambda: window.windowTitel)
    attempt(lambda: window.add(1))
    attempt(lambda: setattr(window, "width", 7))
