def main():
    try:
        helper()  # @main
    except Exception:
        test.fail("caught")


def helper():
    test.skip("from far inside")  # @skip
