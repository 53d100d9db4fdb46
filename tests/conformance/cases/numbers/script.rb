def main
  startApplication('widgets')
  window = waitForObject("{type='Window'}")
  test.compare(window.add(2, 3), 5) # @small
  test.compare(window.add(-2_147_483_648, 0), -2_147_483_648) # @least
  test.compare(window.add('a', 'b'), 'ab') # @texts
  window.opacity = 0.5
  test.verify((window.windowOpacity - 1).abs < 0.01) # @fraction
end
