def main
  calls = []
  test.verify(waitFor(5000) { (calls << 1).size > 2 }) # @callable
  test.compare(calls.size, 3) # @calls
  test.verify(waitFor('calls.size == 3', 1000)) # @text
  test.verify(!waitFor(50) { false }) # @over
end
