def main():
    number = 3
    test.exception("fail_with(number)", "it raises")  # @raises
    test.exception("1 + 1", "it does not")  # @passes


def fail_with(number):
    raise ValueError("number %d" % number)
