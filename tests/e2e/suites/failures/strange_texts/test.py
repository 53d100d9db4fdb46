def main():
    test.log("Ärger mit Ümläuten, 日本語, \U0001f600 and \u200bzero width")
    test.log("control: \x00 \x01 \x1b[31mred\x1b[0m \x7f \x85 \b \f", "tab\tline\nnext\r\nend")
    test.log("XML: <a b=\"c\"> & ]]> &amp; <!-- --> <?pi?>")
    test.log("no character: \ufffe \uffff, half a character: \ud83d")
    test.fail("Fail \x1b[2J\x00", "]]> \x0b \ufffe")  # here
    raise Exception("]]>\x1b[31m\x00\nsecond line \ud83d")  # here
