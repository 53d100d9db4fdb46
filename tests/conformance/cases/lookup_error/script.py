import tamrix


def main():
    startApplication("widgets")
    try:
        waitForObject("{type='QPushButton' text='No such'}", 100)
    except tamrix.LookupError:
        test.log("caught")  # @caught
    waitForObject("{type='QPushButton' text='No such'}", 100)  # @uncaught
