def again(depth)
  again(depth + 1) + 1 # @again
end

def main
  again(0)
rescue SystemStackError
  test.log('caught') # @caught
end
