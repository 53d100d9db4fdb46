"""Clicks the buttons of a calculator and reads its display."""


def keys(text):
    for key in text.split():
        click({"type": "Button", "text": key, "window": ":Calculator"})


def main():
    startApplication("calculator")
    display = waitForObject(":Display")

    test.startSection("Sums")
    keys("7 + 5 =")
    test.compare(display.text, "12", "7 + 5")
    keys("Sqrt")
    test.verify(display.text.startswith("3.4641"), "its root")
    test.endSection()

    test.startSection("Memory")
    keys("MS")
    click("{type='Button' text='Clear All'}")
    test.compare(display.text, "0", "cleared")
    keys("MR")
    test.verify(display.text.startswith("3.4641"), "recalled")
    test.endSection()

    test.verify(display.readOnly, "nobody types into the display")
