"""Types on the keys of a calculator."""


def press(text, typed):
    for key in text.split():
        button = waitForObject({"type": "Button", "text": key})
        click(button)
        typed["keys"].append(key)
    return len(typed["keys"])
