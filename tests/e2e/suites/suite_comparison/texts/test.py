"""Text and JSON files, written by the script, compared in every way."""


def write(name, text):
    with open(name, "w", encoding="utf-8", newline="") as file:
        file.write(text)
    return name


def main():
    expected = write("expected.txt", "one\ntwo\nthree\n")
    windows = write("windows.txt", "one\r\ntwo\r\nthree\r\n")
    actual = write("actual.txt", "one\n2\nthree\nvier: ä\n")
    test.verify(test.compareTextFiles(expected, windows))
    test.verify(not test.compareTextFiles(expected, windows, {"strictLineEndings": True}))
    test.verify(not test.compareTextFiles(expected, actual, {"strictLineEnding": True}))
    try:
        test.compareTextFiles(expected, "absent.txt")
    except RuntimeError as error:
        test.log(str(error))

    one = write("one.json", '{"name": "Ink", "sizes": [1, 2]}')
    test.verify(test.compareJSONFiles(one, write("same.json", '{"sizes":[1,2], "name":"Ink"}')))
    test.verify(not test.compareJSONFiles(one, write("other.json", '{"name":"Ink","sizes":[1,3]}')))
    test.verify(not test.compareJSONFiles(one, write("faulty.json", '{"name": Ink}')))
