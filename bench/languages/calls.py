from itertools import repeat


def empty(count):
    for _ in repeat(None, count):
        pass


def call_nothing(count):
    for _ in repeat(None, count):
        nothing()


def call_plus(count):
    for _ in repeat(None, count):
        plus(1000, 2000)


def best(loop, count=20000):
    times = []
    for _ in range(50):
        start = now()
        loop(count)
        times.append(now() - start)
    return min(times) / count


def main():
    report("empty", best(empty))
    report("nothing", best(call_nothing))
    report("plus", best(call_plus))
