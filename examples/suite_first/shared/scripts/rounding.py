# Read with source(): its names become names of the test script.

from decimal import ROUND_HALF_UP, Decimal


def rounded(amount):
    """An amount of money, to five cents."""
    return (amount * 20).quantize(Decimal(1), ROUND_HALF_UP) / 20
