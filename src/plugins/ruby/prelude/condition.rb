# The source of what runs is kept: a failed condition is told by it.
RubyVM.keep_script_lines = true

# What the running call of a verdict says in its script: the source text of its condition, and the
# values in it. They are looked up once more: variables, attributes, properties of an application's
# objects, operators and what Ruby's own values tell of themselves; nothing else is called a second
# time.
class Tamrix::Condition
  Node = RubyVM::AbstractSyntaxTree::Node
  # What can't be evaluated again.
  class Unknown < StandardError; end

  MOST_VALUES = 20
  CONSTANTS = %i[LIT STR NIL TRUE FALSE].freeze
  VARIABLES = %i[LVAR DVAR IVAR GVAR CVAR CONST COLON2 COLON3 SELF].freeze
  # Nodes whose parts are shown in their place.
  COMPOSITES = %i[AND OR OPCALL MATCH2 MATCH3 IF LIST].freeze
  # Nodes of which the parts are shown when they can't be evaluated.
  CALLS = %i[CALL QCALL FCALL HASH BLOCK_PASS DOT2 DOT3].freeze
  # Classes of Ruby and of the test system, and methods of them that only tell something.
  PLAIN = [Integer, Float, Rational, String, Symbol, Array, Hash, Range, Regexp, Time, Struct,
           NilClass, TrueClass, FalseClass, Tamrix::DataSet, Tamrix::Record].freeze
  HARMLESS = %i[
    + - * / % ** & | ^ ~ ! == != < > <= >= <=> === =~ !~ << >> -@ +@ [] abs all? any? between? ceil
    chomp chr class compact count cover? digits dig downcase empty? end_with? eql? equal? even? fetch
    first flatten floor hash include? index inspect instance_of? is_a? join key? keys kind_of? last
    length lines match? max member? min negative? nil? none? odd? one? ord positive? respond_to?
    reverse round size sort split start_with? strip sum to_a to_f to_h to_i to_r to_s to_sym uniq
    upcase value? values values_at zero?
  ].to_h { |name| [name, true] }.freeze
  METHOD = Kernel.instance_method(:method)

  # [text, [[text, value], ...]]; nil when there is nothing to tell, as of a plain constant. To be
  # called by the native function `name`, whose argument is the first one, or has the name
  # `parameter`.
  def self.explain(binding, name, parameter)
    call = RubyVM::AbstractSyntaxTree.of(caller_locations(2, 1).first, keep_script_lines: true)
    node = argument(call, parameter) if call && call.children.include?(name)
    return unless node.is_a?(Node) && !CONSTANTS.include?(node.type)
    new(call.script_lines, binding).explain(node)
  rescue StandardError, SyntaxError
    # Its source is not to be had.
    nil
  end

  def self.argument(call, parameter)
    list = call.children.last
    first = list.children.first if list.is_a?(Node) && list.type == :LIST
    return first unless first&.type == :HASH && first.first_column == first.children[0].first_column
    pairs = first.children[0].children.compact.each_slice(2)
    pairs.find { |key, _| key.children == [parameter.to_sym] }&.last
  end

  def initialize(lines, binding)
    @lines = lines
    @binding = binding
    @values = {}
  end

  def explain(node)
    visit(node)
    [text(node), @values.to_a]
  end

  private

  # Adds the values in the node, from left to right.
  def visit(node)
    return if !node.is_a?(Node) || CONSTANTS.include?(node.type) || @values.size >= MOST_VALUES
    return node.children.each { |child| visit(child) } if COMPOSITES.include?(node.type)
    add(node)
  rescue StandardError
    # Of a call with a block, what it is called on.
    call = node.type == :ITER ? node.children.first : node
    call.children.each { |child| visit(child) } if CALLS.include?(call.type)
  end

  def add(node)
    value = value_of(node)
    # Functions and classes say nothing that their names do not.
    @values[text(node)] ||= value unless [Module, Proc, Method].any? { |type| type === value }
  end

  # The text of the node on one line, however it was broken.
  def text(node)
    from, to = node.first_lineno - 1, node.last_lineno - 1
    parts = @lines[from..to].map(&:b)
    parts[-1] = parts[-1].byteslice(0, node.last_column)
    parts[0] = parts[0].byteslice(node.first_column..)
    parts.map { |part| part.force_encoding('UTF-8').strip }.join(' ')
  end

  def value_of(node)
    parts = node.children
    case node.type
    when *VARIABLES, :NIL, :TRUE, :FALSE then @binding.eval(text(node))
    when :LIT, :STR then parts[0]
    # In an `eval` names of variables around it look like calls.
    when :VCALL then variable(parts[0])
    when :LIST then parts[0..-2].map { |part| value_of(part) }
    when :HASH then Hash[*(parts[0] ? value_of(parts[0]) : [])]
    when :DOT2, :DOT3 then Range.new(*parts.map { |part| value_of(part) }, node.type == :DOT3)
    when :AND then parts.inject(true) { |value, part| value && value_of(part) }
    when :OR then parts.inject(false) { |value, part| value || value_of(part) }
    when :IF then value_of(value_of(parts[0]) ? parts[1] : parts[2])
    when :CALL, :OPCALL, :QCALL then called(node.type, *parts)
    else raise Unknown
    end
  end

  def variable(name)
    raise Unknown unless @binding.local_variable_defined?(name)
    @binding.local_variable_get(name)
  end

  def called(type, receiver, name, arguments)
    object = value_of(receiver)
    return if type == :QCALL && object.nil?
    raise Unknown unless arguments.nil? || arguments.type == :LIST
    values = arguments ? value_of(arguments) : []
    return property(object, name, values) if Tamrix::Object === object
    raise Unknown unless harmless?(object, name)
    object.public_send(name, *values)
  end

  def property(object, name, values)
    return object.public_send(name, *values) if %i[== != nil? !].include?(name)
    name = values.pop if name == :[]
    found = object._property(name.to_s) if values.empty?
    found ? found.first : raise(Unknown)
  end

  def harmless?(object, name)
    method = METHOD.bind_call(object, name)
    place = method.source_location
    return true if object.is_a?(Struct) && object.members.include?(name)
    # Attributes have a place, and no code there.
    return method.arity.zero? && !RubyVM::InstructionSequence.of(method) if place && script?(place)
    HARMLESS[name] && PLAIN.any? { |type| type === object }
  end

  def script?(place) = !place.first.start_with?('<internal:')
end
