def main():
    source(findFile("scripts", "source_more.py"))
    test.compare(twice(21), 42)  # @twice
    report()  # @main
