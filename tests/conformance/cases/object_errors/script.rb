def attempt
  yield
  test.fail('it was taken')
rescue NoMethodError, ArgumentError, Tamrix::Error => error
  test.log('refused', error.message) # @refused
end

def main
  startApplication('widgets')
  window = waitForObject("{type='Window'}")
  attempt { window.windowTitel }
  attempt { window.add(1) }
  attempt { window.width = 7 }
end
