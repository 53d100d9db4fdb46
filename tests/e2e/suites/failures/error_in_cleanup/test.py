def main():
    test.pass_("main is well")


def cleanup():
    test.nothing_of_this_name()  # here
