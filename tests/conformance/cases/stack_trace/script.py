def inner():
    return test.stackTrace()


def outer():
    return inner()


def main():
    test.compare(len(outer()), 3)  # @depth
    test.compare(len(test.stackTrace(0, 1)), 1)  # @most
