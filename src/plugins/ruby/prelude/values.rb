# What holds several values, one after another.
module Tamrix::Entries
  include Enumerable

  def each
    return enum_for(:each) unless block_given?
    size.times { |index| yield self[index] }
    self
  end

  def length = size
end
[Tamrix::DataSet, Tamrix::Record].each { |type| type.include(Tamrix::Entries) }

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
    main = Thread.current
    watch = Thread.new do
      sleep seconds
      loop { main.raise(Exceeded); sleep 0.02 }
    end
    value.inspect.to_s
  rescue Exceeded
    nil
  ensure
    watch&.kill
  end
end
