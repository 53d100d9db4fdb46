def twice(number)
  2 * number
end

def report
  test.log('from the other file') # @report
end
