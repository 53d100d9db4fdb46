import tamrix


def main():
    startApplication("widgets")
    window = waitForObject("{type='Window'}")
    for number in (2147483648, 9007199254740993, 2.7):
        try:
            window.spread("Wide", number)
            test.fail("it was cut")
        except (tamrix.Error, TypeError):
            test.log("refused")  # @refused
