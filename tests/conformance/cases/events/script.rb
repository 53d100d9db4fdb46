def main
  startApplication('widgets')
  window = waitForObject("{type='Window'}")
  seen = []
  installEventHandler('Window', 'Resize') { |object| seen << object }
  window.resize(700, 555)
  test.verify(waitFor(5000) { !seen.empty? }) # @seen
end
