# Mode: run
# Then: next next next return next
# A step over a recursion does not stop in it; a return ends one call of it.
def sink(depth):
    if depth == 0:
        depth = 0  # break
        return 0
    below = sink(depth - 1)
    return below + 1


def main():
    deep = sink(3)
    deep = sink(50)
    return deep
