"""Adds numbers with a calculator."""

import keypad


def add(display, text):
    typed = {"keys": [], "of": {"text": text}}
    keypad.press(text, typed)
    return str(display.text)


def main():
    startApplication("calculator")
    display = waitForObject({"type": "QLineEdit"})
    print("the sum is", add(display, "7 + 5 ="))
    test.compare(display.text, "12", "7 + 5")
