def init
  raise ArgumentError, 'not ready' # @init
end

def main
  test.log('never')
end

def cleanup
  test.log('cleanup') # @cleanup
end
