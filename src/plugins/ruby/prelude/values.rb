# What stands for a namespace of the library, as `test`. Its functions and constants are methods, so
# that scripts write them as in the other languages: testInteraction.Yes.
class Tamrix::Namespace
  def initialize(name)
    @name = name
  end

  def inspect = @name
  alias to_s inspect

  def define_constant(name, value) = define_singleton_method(name) { value }
end

# What holds several values, one after another.
module Tamrix::Entries
  include Enumerable

  def each
    return enum_for(:each) unless block_given?
    size.times { |index| yield self[index] }
    self
  end

  def length = size

  private

  # The place of an index, which counts from the end when it is negative.
  def place(index, what)
    unless index.is_a?(Integer)
      raise TypeError, "no implicit conversion of #{index.class} into Integer"
    end
    return index % size if (-size...size).cover?(index)
    raise IndexError, "#{what} #{index} outside of its #{size} entries"
  end
end

# Methods in front of whose names stands "_" are the library's.
class Tamrix::DataSet
  include Tamrix::Entries

  def size = records.size
  def [](index) = records[place(index, 'record')]
  def inspect = _text
  alias to_s inspect

  private

  def records = @records ||= _records
end

class Tamrix::Record
  include Tamrix::Entries

  def size = _values.size

  # By field name or column.
  def [](key)
    return _values[place(key, 'column')] unless key.is_a?(String) || key.is_a?(Symbol)
    _values[_names.rindex(key.to_s) || raise(KeyError, "the data set has no field '#{key}'")]
  end
end

class Tamrix::ApplicationContext
  def ==(other) = other.is_a?(Tamrix::ApplicationContext) && _id == other._id
  def hash = _id.hash
  def inspect = _text

  alias eql? ==
  alias to_s inspect
end

# The rows of a step's table as Hashes.
class Tamrix::Table < Array
  attr_reader :headers, :raw

  def initialize(raw)
    @raw = raw
    @headers = raw.first
    super(raw.drop(1).map { |row| @headers.zip(row).to_h })
  end

  def rows = to_a
end

# Ends script code that takes too long while a debugger looks at a value.
module Tamrix::TimeLimit
  class Exceeded < Exception; end

  # nil when it was not done in time.
  def self.inspect_within(value, seconds)
    limited(-> { sleep seconds }) { value.inspect.to_s }
  rescue Exceeded
    nil
  end

  # The value of code that a person writes, which is ended when `over` says so.
  def self.evaluate(code, binding, file, over)
    limited(-> { sleep 0.02 until over.call }) { binding.eval(code, file, 1) }
  end

  # What the block gives. It has as much time as `wait` takes, and Exceeded is raised then.
  def self.limited(wait)
    Thread.handle_interrupt(Exceeded => :never) do
      watch = watcher(Thread.current, wait)
      begin
        Thread.handle_interrupt(Exceeded => :immediate) { yield }
      ensure
        watch.kill.join
        forget_late
      end
    end
  end

  # Code that catches everything is ended again and again.
  def self.watcher(thread, wait)
    Thread.new do
      wait.call
      loop do
        thread.raise(Exceeded) unless thread.pending_interrupt?
        sleep 0.02
      end
    end
  end

  # What was raised when the code had ended already: one, and hardly ever a second one.
  def self.forget_late
    3.times do
      Thread.handle_interrupt(Exceeded => :immediate) { Thread.pass }
    rescue Exceeded
      # That was one.
    end
  end
  private_class_method :limited, :watcher, :forget_late
end
