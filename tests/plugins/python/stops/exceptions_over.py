# Mode: next 1
# A step over a call that fails ends where the exception is caught.
from exceptions import Manager, passing


def main():
    with Manager():
        passing()
    try:
        passing()
    except ValueError:
        return 1
