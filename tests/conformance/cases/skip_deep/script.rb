def main
  helper # @main
rescue StandardError
  test.fail('caught')
end

def helper
  test.skip('from far inside') # @skip
end
