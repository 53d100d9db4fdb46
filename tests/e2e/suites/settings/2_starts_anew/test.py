# Finds the settings of the suite and none of the case before.


def main():
    test.compare(testSettings.waitForObjectTimeout, 700)
    test.compare(testSettings.tesseract.language, "deu")
    test.compare(testSettings.throwOnFailure, False)
    test.compare(testSettings.logScreenshotOnFail, True)
    test.compare(testSettings.getWrappersForApplication("shop"), [])
    test.fail("this failure is wanted, too")
    test.log("and does not throw")
