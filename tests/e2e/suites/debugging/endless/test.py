"""Waits for ever."""

import time


def main():
    print("ready")
    rounds = 0
    while rounds >= 0:
        rounds += 1
        time.sleep(0.01)
    print("released")
