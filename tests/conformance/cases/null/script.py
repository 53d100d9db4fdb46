def main():
    test.verify(currentApplicationContext() is None)  # @null
    test.compare(None, None)  # @equal
    test.log("without a detail", None)  # @left
