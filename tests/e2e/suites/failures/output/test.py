import sys


def main():
    print("before")
    test.log("between")
    print("a part of ", end="")
    print("a line")
    print("to standard error", file=sys.stderr)
    sys.stdout.write("never ended")
    test.log("behind a line that has no end")
    print(" ]]> \x00 \x1b[31mred\x1b[0m ünï")
    print("the last words", end="")
