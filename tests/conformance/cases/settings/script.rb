def main
  testSettings.waitForObjectTimeout = 1234
  test.compare(testSettings.waitForObjectTimeout, 1234) # @number
  testSettings.logScreenshotOnFail = false
  test.verify(!testSettings.logScreenshotOnFail) # @flag
  begin
    testSettings.waitForObjectTimeOut = 1
    test.fail('a slip in the name was taken')
  rescue NoMethodError
    test.log('refused') # @refused
  end
end
