def main
  source(findFile('scripts', 'source_error_faulty.rb'))
rescue Tamrix::Error
  test.log('caught') # @caught
end
