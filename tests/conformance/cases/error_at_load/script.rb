def prepare
  raise ArgumentError, 'too early' # @prepare
end

prepare # @load

def main
  test.log('never')
end
