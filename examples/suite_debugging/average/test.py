"""Averages marks, for a look into the debugger: docs/debugger.md shows it."""

import marks


def main():
    names = ["Ada", "Bob"]
    for name in names:
        average = marks.average(marks.of(name))
        test.log(name, str(average))
    test.compare(average, 2.5)
