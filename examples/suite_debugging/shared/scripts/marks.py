"""The marks of a class."""

MARKS = {"Ada": [1, 2], "Bob": [2, 3]}


def of(name):
    return MARKS[name]


def average(marks):
    total = 0
    for mark in marks:
        total += mark
    return total / len(marks)
