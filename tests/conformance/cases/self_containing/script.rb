def main
  values = [1]
  values << values
  begin
    findObject({ type: values })
  rescue Tamrix::Error, ArgumentError
    test.log('refused') # @refused
  end
  test.pass('it goes on') # @on
end
