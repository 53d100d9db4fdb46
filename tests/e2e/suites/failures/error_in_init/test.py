def init():
    raise OSError("no room")  # here


def main():
    test.fail("never runs")


def cleanup():
    test.log("clean-up runs behind a failed init")
