import sys


def again(depth):
    return again(depth + 1) + 1  # @again


def main():
    try:
        again(0)
    except RecursionError:
        test.log("caught")  # @caught
