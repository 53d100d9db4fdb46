def main
  test.compare(testSettings.waitForObjectTimeout, 20_000) # @number
end
