def main
  begin
    raise ArgumentError, 'wrong'
  rescue ArgumentError => error
    test.log('caught', error.message) # @caught
  end
  test.pass('it goes on') # @on
end
