import tamrix


def main():
    try:
        startApplication("no_such_program")
    except tamrix.Error:
        test.log("caught")  # @caught
