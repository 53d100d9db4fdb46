"""XML files, written by the script, compared under options."""


def write(name, text):
    with open(name, "w", encoding="utf-8") as file:
        file.write(text)
    return name


def main():
    order = write("order.xml", '<order id="1" at="9:00"><b/>\n<item>Paper</item><item>Ink</item>'
                               "<!-- no hurry --></order>")
    other = write("other.xml", '<order at="9:05" id="1"><item>Ink </item><item>Paper</item><b/>'
                               "</order>")
    test.verify(test.compareXMLFiles(order, order))
    test.verify(not test.compareXMLFiles(order, other))
    options = {"filteredAttributes": ["at"], "ignoreNodeOrder": True}
    test.verify(test.compareXMLFiles(order, other, options))
    options["whitespaceInTextHandling"] = "preserve"
    test.verify(not test.compareXMLFiles(order, other, options))
    options["whitespaceInTextHandling"] = "keep"
    test.verify(test.compareXMLFiles(order, other, options))
    test.verify(not test.compareXMLFiles(order, write("deep.xml", "<a>" * 5000)))
