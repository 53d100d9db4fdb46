"""One of two cases that count."""

import counting


def main():
    total = counting.count(4)
    test.compare(total, 6)
