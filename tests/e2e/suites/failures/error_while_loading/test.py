import no_such_module  # here


def main():
    test.fail("never runs")
