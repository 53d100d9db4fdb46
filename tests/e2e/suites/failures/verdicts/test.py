import faulty


def main():
    test.pass_("All is well so far")
    test.compare(1, 2, "they differ")  # here
    test.compare(1, "1")  # here
    test.verify([], "an empty list is false")  # here
    test.fail("Failed", "with detail")  # here
    test.xpass("Passed unexpectedly")  # here
    test.xcompare(3, 3)  # here
    test.fatal("Fatal", "goes on")  # here
    test.exception("1 + 1", "nothing is raised")  # here
    test.warning("A warning is no failure")
    faulty.verify_all([1, 0])
    source(findFile("scripts", "sourced.py"))
    from_source()
    test.log("The end is reached")
