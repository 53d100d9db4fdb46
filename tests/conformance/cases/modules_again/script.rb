require 'modules_helper'

def main
  test.compare(ModulesHelper.count, 0) # @count
end
