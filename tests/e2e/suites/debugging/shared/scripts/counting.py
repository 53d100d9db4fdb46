"""Counts, for the cases that only need something to be done."""


def count(until):
    total = 0
    for number in range(until):
        total += number
    return total
