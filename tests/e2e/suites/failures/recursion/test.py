def deeper(level):
    return deeper(level + 1)  # here


def main():
    deeper(0)
