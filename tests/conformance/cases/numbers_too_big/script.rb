def main
  startApplication('widgets')
  window = waitForObject("{type='Window'}")
  [2_147_483_648, 9_007_199_254_740_993, 2.7].each do |number|
    window.spread('Wide', number)
    test.fail('it was cut')
  rescue Tamrix::Error, ArgumentError
    test.log('refused') # @refused
  end
end
