module ErrorInModuleHelper
  def self.run(function)
    function.call # @module
  end
end
