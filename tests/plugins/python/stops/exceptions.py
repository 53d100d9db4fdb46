# Mode: step
# Exceptions pass frames, and what cleans up on their way is seen.
class Manager:
    def __enter__(self):
        return self

    def __exit__(self, *error):
        return True


def fail():
    raise ValueError()


def passing():
    try:
        fail()
    finally:
        cleaned = True


def main():
    try:
        passing()
    except ValueError:
        caught = True
    with Manager():
        fail()
    return caught
