def main():
    testSettings.waitForObjectTimeout = 1234
    test.compare(testSettings.waitForObjectTimeout, 1234)  # @number
    testSettings.logScreenshotOnFail = False
    test.verify(not testSettings.logScreenshotOnFail)  # @flag
    try:
        testSettings.waitForObjectTimeOut = 1
        test.fail("a slip in the name was taken")
    except AttributeError:
        test.log("refused")  # @refused
