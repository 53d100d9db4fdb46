def good():
    return 1


def bad():
    raise ValueError("wrong")


def main():
    test.exception(bad, "it raises")  # @raises
    test.exception(good, "it does not")  # @passes
