def check(number):
    test.fixateResultContext()
    test.compare(number % 2, 0, "even")
    test.restoreResultContext()
    test.log("at its own line")  # @own


def main():
    check(2)  # @two
    check(4)  # @four
