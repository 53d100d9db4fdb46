# Mode: step while loading
# The lines of the script itself run when it is loaded.
import json


def decorated(function):
    return function


class Case:
    name = "case"

    @decorated
    def run(self): return self.name


squares = {n: n * n for n in (1, 2)}
text = json.dumps(
    squares,
    default=lambda value: value)
while squares: squares.popitem()


def main():
    return Case().run()
