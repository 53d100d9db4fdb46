def twice(number):
    return 2 * number


def report():
    test.log("from the other file")  # @report
