def main
  test.log('looping') # @looping
  loop {}
end
