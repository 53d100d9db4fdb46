def main
  test.verify(currentApplicationContext.nil?) # @null
  test.compare(nil, nil) # @equal
  test.log('without a detail', nil) # @left
end
