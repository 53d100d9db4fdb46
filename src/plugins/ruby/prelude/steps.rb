# What scripts register step definitions, hooks and parameter types with.
module Tamrix::Steps
  HOOKS = %i[before_feature after_feature before_scenario after_scenario before_step
             after_step].freeze

  class << self
    def step(expression, block)
      text, is_regular = expression(expression)
      Tamrix::StepContext::CURRENT._addStep(text, is_regular, needed(block))
    end

    def hook(name, tags, block)
      Tamrix::StepContext::CURRENT._addHook(name.to_s, tags || '', needed(block))
    end

    def parameter_type(name, patterns, block)
      patterns = [patterns] unless patterns.is_a?(Array)
      patterns = patterns.map { |each| expression(each).first }
      Tamrix::StepContext::CURRENT._addType(name, patterns, block)
    end

    private

    def needed(block) = block || raise(ArgumentError, 'what is to be done stands in a block')

    # The text of an expression, and whether it is a regular one.
    def expression(given)
      case given
      when Regexp then [pattern(given), true]
      when String then [given, false]
      else raise TypeError, "an expression is a String or a Regexp, not #{given.class}"
      end
    end

    # With the flags in front: Ruby's "^" and "$" stand at lines, its "m" is what others call "s".
    def pattern(regexp)
      options = regexp.options
      if options & Regexp::EXTENDED != 0
        raise ArgumentError, 'steps know no extended regular expressions (/x)'
      end
      letters = { 'i' => Regexp::IGNORECASE, 's' => Regexp::MULTILINE }
                .select { |_, flag| options & flag != 0 }.keys.join
      letters.empty? ? regexp.source : "(?#{letters})#{regexp.source}"
    end
  end
end

# With capitals: "when" and "then" are Ruby's own words.
module Kernel
  private

  %i[Given When Then Step].each do |name|
    define_method(name) { |expression, &block| Tamrix::Steps.step(expression, block) }
  end
  Tamrix::Steps::HOOKS.each do |name|
    define_method(name) { |tags = nil, &block| Tamrix::Steps.hook(name, tags, block) }
  end

  # parameter_type(name, pattern) { |text| value }
  def parameter_type(name, pattern, &block) = Tamrix::Steps.parameter_type(name, pattern, block)

  def pending(reason = 'the step definition is to be written')
    raise Tamrix::PendingStepError, reason
  end
end

# A step that is still to be written.
class Tamrix::PendingStepError < StandardError; end

# What steps and hooks keep for each other: their own values first, then those of the scenario and
# of the feature.
class Tamrix::StepContext
  def method_missing(name, *values)
    key = name.to_s
    return _set(key.chop, values[0]) if key.end_with?('=') && values.size == 1
    found = _find(key) if values.empty?
    found ? found.first : super
  end

  def respond_to_missing?(name, _all = false)
    name.end_with?('=') || !_find(name.to_s).nil?
  end

  def to_h = _all.transform_keys(&:to_sym)

  CURRENT = new
end
