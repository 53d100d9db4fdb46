def inner
  test.stackTrace
end

def outer
  inner
end

def main
  test.compare(outer.size, 3) # @depth
  test.compare(test.stackTrace(0, 1).size, 1) # @most
end
