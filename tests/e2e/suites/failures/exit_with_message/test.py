import sys


def main():
    sys.exit("given up")  # here
