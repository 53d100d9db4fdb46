def prepare():
    raise ValueError("too early")  # @prepare


prepare()  # @load


def main():
    test.log("never")
