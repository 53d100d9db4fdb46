def main():
    test.log("looping")  # @looping
    while True:
        pass
