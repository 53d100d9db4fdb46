import modules_helper


def main():
    test.compare(modules_helper.count(), 0)  # @count
