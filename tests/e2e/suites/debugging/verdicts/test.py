"""Fails in every way."""


def check(value):
    test.compare(value, 2)
    test.log("checked")


def main():
    check(1)
    raise ValueError("after all")
