# A test case with preparation and clean-up, and a file that goes with its report.

import os
import tempfile

import shop


def init():
    global receipt
    receipt = os.path.join(tempfile.mkdtemp(), "receipt.txt")


def main():
    prices = shop.read_prices(findFile("testdata", "prices.csv"))
    with open(receipt, "w", encoding="utf-8") as file:
        for article, price in prices.items():
            print(f"{article:10} {price:6}", file=file)
    print("wrote", os.path.basename(receipt))
    test.verify(os.path.getsize(receipt) > 0, "the receipt is not empty")
    test.attachFile(receipt, "The receipt")


def cleanup():
    # Runs in any case, also when main() ended with an error.
    os.remove(receipt)
    os.rmdir(os.path.dirname(receipt))
