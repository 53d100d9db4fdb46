def main
  test.log('before') # @before
  exit
  test.log('never')
end

def cleanup
  test.log('cleanup') # @cleanup
end
