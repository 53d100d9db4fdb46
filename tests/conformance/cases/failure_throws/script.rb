def main
  testSettings.throwOnFailure = true
  begin
    test.compare(1, 2, 'the first') # @first
  rescue Tamrix::VerificationError
    test.log('caught') # @caught
  end
  test.verify(false, 'the second') # @second
  test.log('never')
end

def cleanup
  test.log('cleanup') # @cleanup
end
