import sys


def main():
    test.log("before")  # @before
    sys.exit(0)
    test.log("never")


def cleanup():
    test.log("cleanup")  # @cleanup
