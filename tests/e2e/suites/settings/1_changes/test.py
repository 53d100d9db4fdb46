# Changes settings, also to what lets a failed verdict end the script.


def main():
    test.compare(testSettings.waitForObjectTimeout, 700)
    test.compare(testSettings.tesseract.language, "deu")
    testSettings.waitForObjectTimeout = 1
    testSettings.tesseract.language = "eng"
    testSettings.setWrappersForApplication("shop", ["web"])
    testSettings.throwOnFailure = True
    try:
        test.fail("this failure is wanted")
    except AssertionError:
        test.log("and throws")
