from sums import add, twice


def main():
    list = [{"price": 2}, {"price": 3}]
    sum = add(list)  # @call
    both = twice(sum)  # @after
    test.compare(both, 26, "the sum")  # @compare
    fails()


def fails():
    raise ValueError("at last")  # @throw
