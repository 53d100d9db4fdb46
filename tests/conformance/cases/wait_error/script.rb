def main
  waitFor(1000) { raise ArgumentError, 'no answer' }
rescue Tamrix::Error
  test.log('caught') # @caught
end
