"""Variables of all kinds, for listings."""
import collections
import dataclasses
import sys
import time

setting = "of the module"
hidden = "of the module"
large = list(range(100000))


@dataclasses.dataclass
class Point:
    x: int
    y: int = 2


class Slots:
    __slots__ = ("first", "unset")

    def __init__(self):
        self.first = [1]


class More(Slots):
    def __init__(self):
        super().__init__()
        self.second = {"deep": Point(3)}

    @property
    def costly(self):
        raise AssertionError("a listing does not read properties")


class Bad:
    def __init__(self, what):
        self.what = what

    def __repr__(self):
        return self.what()

    def __getattribute__(self, name):
        if name != "what":
            raise AssertionError("a listing does not ask " + name)
        return object.__getattribute__(self, name)


class Liar(list):
    def __len__(self):
        raise AssertionError("a listing does not ask for the length")

    __iter__ = __len__


class LyingText(str):
    def __getitem__(self, index):
        raise AssertionError("a listing does not ask for a part")

    __len__ = __getitem__


Pair = collections.namedtuple("Pair", "left right")


def fail():
    raise ValueError()


def sleep():
    time.sleep(1000)


def loop():
    while True:
        pass


def recurse():
    return recurse()


def main():
    hidden = "of the function"
    table = {
        "key": 1,
        "a.b": {"c d": [2]},
        "two  blanks": [3],
        "it's]": [4],
        "": [5],
        1: "one",
        (1, "] (2)"): [6],
        (1, 2): Point(0),
        Point: [7],
        2.5: [8],
    }
    items = [0, "text", (1,), [], {}, None, 2.5, True]
    numbers = {3}
    nothing = set()
    cycle = [1]
    cycle.append(cycle)
    deep = [[[[[[]]]]]]
    point = Point(1)
    more = More()
    pair = Pair(1, b"bytes")
    error = KeyError("missing")
    liar = Liar([7])
    lyingText = LyingText("t")
    changing = bytearray(b"b" * 300)
    longText = "a\n" * 10**6
    longNumber = 10**20000
    longName = {"n" * 300: 1}
    bad = [Bad(each) for each in (fail, sys.exit, int, lambda: "y" * 10**4)]

    def inner():
        captured = point
        look()

    inner()


def late():
    slow = [Bad(sleep), Bad(loop), Bad(sleep), Bad(sleep)]
    many = [Bad(sleep) for _ in range(150)]
    number = 1
    keys = {Bad(sleep): number for _ in range(150)}
    look()


def big():
    long = [Bad(lambda: "y" * 10**8), Bad(recurse), "z" * 10**8, b"z" * 10**8, [["z"] * 10**7]]
    look()
