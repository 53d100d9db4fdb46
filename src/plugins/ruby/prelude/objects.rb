# An object of an application.
class Tamrix::Object
  # Methods of every Ruby object that go by names which applications have as well. Without them the
  # application is asked.
  %i[clone display dup extend freeze itself method send tap then].each { |name| undef_method(name) }

  def respond_to_missing?(name, _all = false)
    # What Ruby asks for conversions is nothing of an application.
    return false if name.start_with?('to_')
    _members.include?(name.to_s.delete_suffix('='))
  rescue Tamrix::Error
    false
  end

  # By a name that Ruby can't write, or has itself.
  def [](name) = method_missing(name)

  def []=(name, value)
    method_missing("#{name}=", value)
  end

  def methods(*all) = super + _members.map(&:to_sym)

  def inspect = _text

  alias eql? ==
  alias to_s inspect
end
