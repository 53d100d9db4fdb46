class String
  def left_behind
    'yes'
  end

  def upcase
    'changed'
  end
end

def left_function; end

def main
  $left = 'yes'
  Object.const_set(:LEFT, 'yes')
  ENV['TAMRIX_LEFT'] = 'yes'
  Dir.chdir('/')
  test.startSection('left open') # @open
end
