def main
  context = startApplication('widgets')
  test.verify((Time.now - context.startTime).abs < 60) # @age
end
