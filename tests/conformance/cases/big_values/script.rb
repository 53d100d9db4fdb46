def main
  numbers = (0...100_000).to_a
  test.verify(numbers == [*0...100_000], 'a long list') # @list
  text = 'x' * 1_000_000
  test.compare(text.size, 1_000_000, 'a long text') # @text
  test.verify(text == 'x' * 1_000_000) # @same
end
