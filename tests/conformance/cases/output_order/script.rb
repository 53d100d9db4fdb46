def main
  puts 'first'
  test.log('second') # @second
  puts "third\nfourth"
  warn 'fifth'
  print 'without an end of line'
  test.log('sixth') # @sixth
  puts "\u00e4\u20ac\u{1f600}"
end
