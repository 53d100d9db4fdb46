def main
  startApplication('no_such_program')
rescue Tamrix::Error
  test.log('caught') # @caught
end
