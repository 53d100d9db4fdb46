import tamrix


def condition():
    raise ValueError("no answer")


def main():
    try:
        waitFor(condition, 1000)
    except tamrix.Error:
        test.log("caught")  # @caught
