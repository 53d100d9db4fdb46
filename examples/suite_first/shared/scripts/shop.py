"""The thing under test: a price list and the total of an order."""

import csv
from decimal import Decimal


def read_prices(path):
    with open(path, encoding="utf-8", newline="") as file:
        return {row["article"]: Decimal(row["price"]) for row in csv.DictReader(file)}


def total(prices, order):
    """The price of an order, a dict of article and number."""
    return sum((prices[article] * number for article, number in order.items()), Decimal(0))
