def main
  startApplication('no_such_program')
rescue Tamrix::Error => error
  test.log('caught', error.message) # @caught
end
