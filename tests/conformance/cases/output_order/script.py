import sys


def main():
    print("first")
    test.log("second")  # @second
    print("third\nfourth")
    sys.stderr.write("fifth\n")
    sys.stdout.write("without an end of line")
    test.log("sixth")  # @sixth
    print("\u00e4\u20ac\U0001f600")
