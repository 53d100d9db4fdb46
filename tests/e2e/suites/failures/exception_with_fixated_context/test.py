import faulty


def main():
    faulty.fixated_error()  # here
