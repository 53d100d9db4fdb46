def main
  startApplication('widgets')
  begin
    waitForObject("{type='QPushButton' text='No such'}", 100)
  rescue Tamrix::LookupError
    test.log('caught') # @caught
  end
  waitForObject("{type='QPushButton' text='No such'}", 100) # @uncaught
end
