def main
  startApplication('widgets')
  window = waitForObject("{type='Window'}")
  seen = []
  installEventHandler('Window', 'WindowTitleChange') { seen << 1 }
  window.windowTitle = 'another'
  test.verify(waitFor(5000) { !seen.empty? }) # @seen
end
