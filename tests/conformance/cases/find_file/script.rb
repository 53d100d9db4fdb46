def main
  path = findFile('testdata', 'find_file_data.tsv')
  test.compare(File.basename(path), 'find_file_data.tsv') # @name
  begin
    findFile('testdata', 'no_such_file.tsv')
  rescue Tamrix::Error
    test.log('refused') # @refused
  end
end
