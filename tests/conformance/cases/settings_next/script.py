def main():
    test.compare(testSettings.waitForObjectTimeout, 20000)  # @number
