def main():
    test.log("before")  # @before
    while True:
        pass
