import json


def main():
    json.loads("{")  # here
