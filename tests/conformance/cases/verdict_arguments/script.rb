def attempt
  yield
rescue Tamrix::Error => error
  test.log('refused', error.message) # @refused
end

def main
  attempt { test.compare(1) }
  attempt { test.log }
  attempt { test.startSection }
  attempt { test.resultCount('nothing') }
end
