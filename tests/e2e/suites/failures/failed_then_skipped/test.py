def main():
    test.fail("Failed before")  # here
    test.skip("Too late")
