def main
  context = startApplication('widgets')
  window = waitForObject("{type='Window'}")
  test.compare(window.add(2, 3), 5) # @small
  test.compare(window.add(-2_147_483_648, 0), -2_147_483_648) # @least
  test.compare(window.add('a', 'b'), 'ab') # @texts
  test.verify((window.windowOpacity - 1).abs < 0.01) # @fraction
  test.compare(Image.new(1, 1, 0xff112233).getPixel(0, 0), 4_279_312_947) # @unsigned
  test.verify(context.usedMemory > 100_000) # @memory
end
