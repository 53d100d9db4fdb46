def check(value):
    return test.verify(value > 3, "big enough")  # @check


def main():
    check(5)
    check(1)  # @main
