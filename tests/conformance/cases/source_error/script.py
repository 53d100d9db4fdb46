import tamrix


def main():
    try:
        source(findFile("scripts", "source_error_faulty.py"))
    except tamrix.Error:
        test.log("caught")  # @caught
