def main():
    test.startSection("Outer")
    test.startSection("Inner", "never ended")
    test.fail("Inside")  # here
