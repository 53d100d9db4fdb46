def main
  test.pass('one') # @one
  test.pass('two') # @two
  test.fail('three') # @three
  %w[passes fails xpasses errors warnings logs tests].each do |category|
    test.log("#{category}: #{test.resultCount(category)}") # @count
  end
end
