def good
  1
end

def bad
  raise ArgumentError, 'wrong'
end

def main
  test.exception('it raises') { bad } # @raises
  test.exception('it does not') { good } # @passes
end
