import os
import tamrix


def main():
    path = findFile("testdata", "find_file_data.tsv")
    test.compare(os.path.basename(path), "find_file_data.tsv")  # @name
    try:
        findFile("testdata", "no_such_file.tsv")
    except tamrix.Error:
        test.log("refused")  # @refused
