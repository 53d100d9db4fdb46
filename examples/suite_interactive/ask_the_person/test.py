def main():
    if not testInteraction.isAvailable():
        test.skip("nobody is there to be asked")
    name = testInteraction.input("What is printed on the label?", "A-")
    test.verify(name.startswith("A-"), "the label")
    answer = testInteraction.question("Is the lamp of the printer green?")
    test.compare(answer, testInteraction.Yes, "the lamp")
