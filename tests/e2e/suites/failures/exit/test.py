import sys


def main():
    test.pass_("before the exit")
    sys.exit()


def cleanup():
    test.log("clean-up runs behind an exit")
