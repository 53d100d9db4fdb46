require 'error_in_module_helper'

def main
  ErrorInModuleHelper.run(method(:failing)) # @main
end

def failing
  raise ArgumentError, 'called back' # @fail
end
