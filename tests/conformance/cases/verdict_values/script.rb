def main
  results = [test.verify(true), test.verify(false), test.compare(1, 1), test.compare(1, 2)] # @four
  results.each do |result|
    if result
      test.log('true') # @true
    else
      test.log('false') # @false
    end
  end
end
