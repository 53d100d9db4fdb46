def main():
    numbers = list(range(100000))
    test.verify(numbers == list(range(100000)), "a long list")  # @list
    text = "x" * 1000000
    test.compare(len(text), 1000000, "a long text")  # @text
    test.verify(text == "x" * 1000000)  # @same
