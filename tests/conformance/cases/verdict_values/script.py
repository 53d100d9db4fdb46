def main():
    results = [test.verify(True), test.verify(False), test.compare(1, 1), test.compare(1, 2)]  # @four
    for result in results:
        if result:
            test.log("true")  # @true
        else:
            test.log("false")  # @false
