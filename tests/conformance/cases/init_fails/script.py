def init():
    raise ValueError("not ready")  # @init


def main():
    test.log("never")


def cleanup():
    test.log("cleanup")  # @cleanup
