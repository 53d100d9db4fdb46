def main
  context = startApplication('widgets')
  test.verify(context.isRunning) # @running
  test.verify(context.pid.positive?) # @pid
  test.compare(currentApplicationContext.name, context.name) # @current
  test.compare(applicationContextList.size, 1) # @list
end
