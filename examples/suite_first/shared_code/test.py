# Code and data that the test cases share: shared/scripts and shared/testdata.

import checks
import shop


def main():
    prices = shop.read_prices(findFile("testdata", "prices.csv"))
    test.compare(len(prices), 3)
    checks.check_total(shop.total(prices, {"apple": 5, "bread": 1}), "5.20")
    checks.check_total(shop.total(prices, {}), "0.00")

    source(findFile("scripts", "rounding.py"))
    checks.check_total(rounded(prices["coffee"] * 3), "23.85")
    checks.check_total(rounded(prices["bread"] / 3), "1.05")
