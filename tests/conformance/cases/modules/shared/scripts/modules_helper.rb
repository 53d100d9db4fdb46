module ModulesHelper
  @calls = []

  def self.check(value)
    @calls << value
    test.compare(value, 7, 'in the module') # @check
  end

  def self.count
    @calls.size
  end
end
