calls = []


def check(value):
    calls.append(value)
    test.compare(value, 7, "in the module")  # @check


def count():
    return len(calls)
