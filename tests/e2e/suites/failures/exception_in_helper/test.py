import faulty


def main():
    faulty.outer({})
