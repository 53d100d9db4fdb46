def main():
    test.pass_("one")  # @one
    test.pass_("two")  # @two
    test.fail("three")  # @three
    for category in ["passes", "fails", "xpasses", "errors", "warnings", "logs", "tests"]:
        test.log("%s: %d" % (category, test.resultCount(category)))  # @count
