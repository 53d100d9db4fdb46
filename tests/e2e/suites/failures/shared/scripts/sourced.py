def from_source():
    test.fail("In sourced code", "the file is named")  # here
