import tamrix


def main():
    testSettings.throwOnFailure = True
    try:
        test.compare(1, 2, "the first")  # @first
    except tamrix.VerificationError:
        test.log("caught")  # @caught
    test.verify(False, "the second")  # @second
    test.log("never")


def cleanup():
    test.log("cleanup")  # @cleanup
