def check(value)
  test.verify(value > 3, 'big enough') # @check
end

def main
  check(5)
  check(1) # @main
end
