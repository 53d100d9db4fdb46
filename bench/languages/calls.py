from itertools import repeat
from operator import add


def empty(count):
    for _ in repeat(None, count):
        pass


def bare(count):
    for _ in repeat(None, count):
        add(1000, 2000)


def call(count):
    for _ in repeat(None, count):
        nothing(1000, 2000)


def best(loop, count=20000):
    times = []
    for _ in range(50):
        start = now()
        loop(count)
        times.append(now() - start)
    return min(times) / count


def main():
    report("empty", best(empty))
    report("bare", best(bare))
    report("call", best(call))
