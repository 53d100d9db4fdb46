def main():
    test.log("before")  # @before
    test.skip("not here", "the reason")  # @skip
    test.log("never")


def cleanup():
    test.log("cleanup")  # @cleanup
