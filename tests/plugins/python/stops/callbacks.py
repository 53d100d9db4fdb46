# Mode: step
# Functions that native functions and Python's own call stand above the line that called these.
asked = 0


def isReady():
    global asked
    asked += 1
    return asked == 2


def byLength(text):
    return len(text)


def main():
    waitFor(isReady, 2000)
    waitFor("asked == 2")
    sorted(["b"], key=byLength)
    test.exception(lambda: [][1])
    called(lambda value: isReady())
