import tamrix


def main():
    values = [1]
    values.append(values)
    try:
        findObject({"type": values})
    except (tamrix.Error, ValueError):
        test.log("refused")  # @refused
    test.pass_("it goes on")  # @on
