require 'modules_helper'

def main
  ModulesHelper.check(7) # @main
  test.compare(ModulesHelper.count, 1) # @count
end
