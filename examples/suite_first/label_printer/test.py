# A test case that can't run everywhere.

import os


def main():
    if "LABEL_PRINTER" not in os.environ:
        test.skip("No label printer", "LABEL_PRINTER names the device")
    test.verify(os.path.exists(os.environ["LABEL_PRINTER"]), "the device is there")
