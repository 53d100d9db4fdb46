def main():
    try:
        raise ValueError("wrong")
    except ValueError as error:
        test.log("caught", str(error))  # @caught
    test.pass_("it goes on")  # @on
