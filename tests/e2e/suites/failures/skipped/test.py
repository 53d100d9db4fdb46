def main():
    try:
        test.skip("Not today", "no reason")
    except Exception:
        test.fail("a skip can't be caught like this")
    test.fail("never runs")


def cleanup():
    test.log("clean-up runs behind a skip")
