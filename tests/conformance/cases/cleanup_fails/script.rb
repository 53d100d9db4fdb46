def main
  raise ArgumentError, 'in main' # @main
end

def cleanup
  raise ArgumentError, 'in cleanup' # @cleanup
end
