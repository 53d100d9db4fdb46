def main():
    first()


def first():
    second()


def second():
    try:
        int("seven")
    except ValueError as error:
        raise RuntimeError("no number") from error  # here


def cleanup():
    test.log("clean-up runs behind an error")
