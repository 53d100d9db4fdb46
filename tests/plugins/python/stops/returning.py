# Mode: run
# Then: return step step step run
# The commands for the next, the inner and the outer line.
def inner(value):
    doubled = value * 2  # break
    return doubled


def middle(value):
    a = inner(value)
    b = inner(a) if value > 5 else 0
    return a + b


def main():
    one = middle(1)
    two = len(str(one))
    return two
