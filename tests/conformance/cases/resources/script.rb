def main
  test.compare(tamrixinfo.testCaseName, 'resources') # @case
  test.verify(File.directory?(tamrixinfo.resultDir)) # @results
  test.compare(File.basename(Dir.pwd), 'resources') # @folder
end
