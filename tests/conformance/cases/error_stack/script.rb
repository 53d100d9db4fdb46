def inner(value)
  raise ArgumentError, "no #{value}" # @inner
end

def outer
  inner('number') # @outer
end

def main
  outer # @main
end
