def main():
    calls = []

    def enough():
        calls.append(1)
        return len(calls) > 2

    test.verify(waitFor(enough, 5000))  # @callable
    test.compare(len(calls), 3)  # @calls
    test.verify(waitFor("len(calls) == 3", 1000))  # @text
    test.verify(not waitFor(lambda: False, 50))  # @over
