def main
  number = 3
  test.exception('fail_with(number)', 'it raises') # @raises
  test.exception('1 + 1', 'it does not') # @passes
  number
end

def fail_with(number)
  raise ArgumentError, "number #{number}"
end
