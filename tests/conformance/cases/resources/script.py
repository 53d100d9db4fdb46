import os


def main():
    test.compare(tamrixinfo.testCaseName(), "resources")  # @case
    test.verify(os.path.isdir(tamrixinfo.resultDir()))  # @results
    test.compare(os.path.basename(os.getcwd()), "resources")  # @folder
