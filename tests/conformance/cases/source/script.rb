def main
  source(findFile('scripts', 'source_more.rb'))
  test.compare(twice(21), 42) # @twice
  report # @main
end
