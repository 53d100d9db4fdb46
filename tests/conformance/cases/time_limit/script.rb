def main
  test.log('before') # @before
  loop {}
end
