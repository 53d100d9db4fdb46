def main
  isLeft = defined?(LEFT) || ''.respond_to?(:left_behind) || 'a'.upcase != 'A'
  test.verify(!isLeft, 'names of all modules') # @names
  test.verify(!ENV.key?('TAMRIX_LEFT'), 'the environment') # @environment
  test.compare(File.basename(Dir.pwd), 'leaves_traces_next', 'the folder') # @folder
  test.verify(!$left && !respond_to?(:left_function, true), 'names of the script') # @globals
end
