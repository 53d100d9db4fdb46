"""Looks for a button that is not there."""


def main():
    testSettings.waitForObjectTimeout = 300
    startApplication("calculator")
    click({"type": "Button", "text": "55"})
