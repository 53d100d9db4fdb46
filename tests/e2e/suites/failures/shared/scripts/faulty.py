"""Helpers of which each has a fault."""


def outer(values):
    return inner(values)


def inner(values):
    return values["absent"]  # here


def verify_all(values):
    for value in values:
        test.verify(value, "from the helper")  # here


def fixated_error():
    test.fixateResultContext(1)
    raise ValueError("reported at the caller")
