"""Verifications that several test cases share."""


def check_total(actual, expected):
    """`expected` is the amount as a person writes it: "5.20"."""
    # Results shall stand at the line that calls this function, not in here.
    test.fixateResultContext(1)
    try:
        test.compare(f"{actual:.2f}", expected, "total of the order")
        test.verify(actual >= 0, "totals are never negative")
    finally:
        test.restoreResultContext()
