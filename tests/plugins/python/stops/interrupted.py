import os
import signal
import statistics


def pressed():
    os.kill(os.getpid(), signal.SIGINT)
    return 1


def main():
    middle = statistics.mean(pressed() for _ in range(1))
    while middle < 3: middle += 1
    return middle
