def attempt(call):
    try:
        call()
    except tamrix.Error as error:
        test.log("refused", str(error))  # @refused


def main():
    attempt(lambda: test.compare(1))
    attempt(lambda: test.log())
    attempt(lambda: test.startSection())
    attempt(lambda: test.resultCount("nothing"))


import tamrix
