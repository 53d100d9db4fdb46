# Mode: run
# A file that is run by source() stands above the line that did so.
import os


def main():
    source(os.path.join(os.path.dirname(__file__), "library.py"))
    useLibrary()
