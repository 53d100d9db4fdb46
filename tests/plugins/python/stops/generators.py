# Mode: step
# Generators run in pieces, each in the frames of whoever asks for the next value.
def count(upTo):
    for number in range(upTo):
        yield number


def twice(upTo):
    yield from count(upTo)


class Closing:
    def __iter__(self):
        try:
            yield 1
        finally:
            self.closed = True


def main():
    for number in twice(1):
        total = sum(n + 1 for n in [number])
    values = count(2)
    next(values)
    try:
        values.throw(ValueError())
    except ValueError:
        closing = Closing()
    for number in closing:
        break
    return total
