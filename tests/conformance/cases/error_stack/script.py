def inner(value):
    raise ValueError("no " + value)  # @inner


def outer():
    inner("number")  # @outer


def main():
    outer()  # @main
