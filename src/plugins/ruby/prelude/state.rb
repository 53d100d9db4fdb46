# What a script can change in Ruby, and how that is undone: what a case leaves behind must not reach
# the next. Definitions are told by where they stand: those in files of Ruby's library stay, as the
# library stays loaded.
class Tamrix::RuntimeState
  def self.library_folders
    require 'rbconfig'
    names = %w[rubylibprefix rubylibdir rubyarchdir sitedir sitearchdir vendordir vendorarchdir]
    folders = RbConfig::CONFIG.values_at(*names) + (defined?(Gem) ? Gem.path : [])
    folders += folders.compact.select { |f| File.exist?(f) }.map { |f| File.realpath(f) }
    folders.compact.reject(&:empty?).uniq.map { |folder| folder + '/' }
  end

  SEPARATORS = %i[$, $; $/ $\\ $stdin $VERBOSE $DEBUG].freeze
  OWN = Module.instance_method(:instance_methods)
  OWN_PRIVATE = Module.instance_method(:private_instance_methods)
  METHOD = Module.instance_method(:instance_method)
  CONSTANTS = Module.instance_method(:constants)
  LOCATION = Module.instance_method(:const_source_location)
  SINGLETON = Kernel.instance_method(:singleton_class)
  TAKEN = %i[@modules @main_variables @constants @values @class_variables @globals @separators
             @path @features @encodings].freeze
  private_constant(*constants)

  def initialize
    @folders = Tamrix::RuntimeState.library_folders
    @search = []
    @exits = []
    @traps = {}
    @outer = []
    watch_handlers
  end

  # What init scripts have defined belongs to the state to which a script's end leads back.
  def push
    @outer.push(TAKEN.map { |name| instance_variable_get(name) })
    take
  end

  def pop
    TAKEN.zip(@outer.pop) { |name, value| instance_variable_set(name, value) }
  end

  # Remembers how everything is.
  def take
    @modules = {}.compare_by_identity
    ObjectSpace.each_object(Module) do |each|
      next if each.singleton_class?
      single = SINGLETON.bind_call(each)
      @modules[each] = methods_of(each)
      @modules[single] = methods_of(single)
    end
    main = TOPLEVEL_BINDING.receiver
    @modules[main.singleton_class] = methods_of(main.singleton_class)
    @main_variables = main.instance_variables
    @constants = {}.compare_by_identity
    @modules.each_key { |each| @constants[each] = CONSTANTS.bind_call(each, false) }
    @values = @constants[Object].reject { |name| Object.autoload?(name) }
                                .to_h { |name| [name, Object.const_get(name, false)] }
    @class_variables = Object.class_variables(false)
    @globals = global_variables
    @separators = SEPARATORS.to_h { |name| [name, eval(name.to_s)] }
    @path = $LOAD_PATH.dup - @search
    @features = $LOADED_FEATURES.dup
    @encodings = [Encoding.default_external, Encoding.default_internal]
  end

  # Makes everything as it was.
  def restore
    @extended = $LOADED_FEATURES.any? { |file| !@features.include?(file) && !script?(file) }
    end_threads
    restore_handlers
    restore_methods
    restore_constants
    restore_variables
    $LOAD_PATH.replace(@path)
    @search = []
    $LOADED_FEATURES.reject! { |file| script?(file) }
    Encoding.default_external, Encoding.default_internal = @encodings
    GC.enable
    GC.start
    take if @extended && @outer.empty?
  end

  # Modules are looked for in these folders first.
  def search_in(folders)
    folders = folders.uniq
    $LOAD_PATH.replace(folders + ($LOAD_PATH - @search - folders))
    @search = folders
  end

  def add_search_folder(folder) = search_in(@search + [folder])

  def run_exit_blocks
    until @exits.empty?
      begin
        @exits.pop.call
      rescue SystemExit
        # The case is at its end already.
      rescue Exception => error
        $stderr.puts error.full_message(highlight: false)
      end
    end
  end

  # DATA is the script's, as if it stood in the file.
  def open_data(path)
    file = File.open(path, 'r:UTF-8')
    return file.close if file.each_line.none? { |line| line.chomp == '__END__' }
    Object.send(:remove_const, :DATA) if Object.const_defined?(:DATA, false)
    TOPLEVEL_BINDING.eval('->(file) { Object.const_set(:DATA, file) }', path, 1).call(file)
  end

  def feature?(file) = $LOADED_FEATURES.include?(file)

  def note_feature(file)
    $LOADED_FEATURES.push(file) unless feature?(file)
  end

  # Names of the global variables that scripts have made.
  def script_globals
    global_variables - @globals
  end

  # Constants that hold Hashes, by name: the script's own, and those of its module of this name.
  def script_hashes(module_name)
    names = Object.constants(false).select do |name|
      of_script?(Object.const_source_location(name, false)&.first)
    end
    values = names.to_h { |name| [name, Object.const_get(name, false)] }
    inner = values[module_name.to_sym]
    inner.constants.each { |name| values[name] = inner.const_get(name) } if inner.is_a?(Module)
    values.select { |_, value| value.is_a?(Hash) }
  end

  private

  def script?(file)
    file && file.start_with?('/') && @folders.none? { |folder| file.start_with?(folder) }
  end

  def script_method?(method)
    location = method.source_location
    location ? of_script?(location[0]) : !@extended
  end

  def library?(file)
    file.start_with?('/') && !script?(file)
  end

  # Also of code in no file, and of a file by a relative path.
  def of_script?(file) = file && !file.start_with?('<internal:') && !library?(file)

  def methods_of(each)
    (OWN.bind_call(each, false) + OWN_PRIVATE.bind_call(each, false))
      .to_h { |name| [name, METHOD.bind_call(each, name)] }
  end

  def visibility(each, name)
    return :private if each.private_method_defined?(name, false)
    each.protected_method_defined?(name, false) ? :protected : :public
  end

  # The handlers that scripts register are kept here instead of in Ruby.
  def watch_handlers
    exits, traps, original = @exits, @traps, Signal.method(:trap)
    Kernel.define_method(:at_exit) { |&block| exits.push(block) && block }
    Kernel.send(:private, :at_exit)
    Kernel.define_singleton_method(:at_exit) { |&block| exits.push(block) && block }
    original_fork = Process.method(:fork)
    # A child is not to end as the program does, with all that this cleans up.
    fork = lambda do |&block|
      child = original_fork.call
      return child if child || !block
      status = 0
      begin
        block.call
      rescue SystemExit => error
        status = error.status
      rescue Exception => error
        $stderr.puts error.full_message(highlight: false)
        status = 1
      end
      exit!(status)
    end
    Kernel.define_method(:fork, &fork)
    Kernel.send(:private, :fork)
    [Kernel, Process].each { |each| each.define_singleton_method(:fork, &fork) }
    trap = lambda do |signal, *command, &block|
      name = Signal.signame(signal) if signal.is_a?(Integer)
      name ||= signal.to_s.delete_prefix('SIG')
      before = original.call(signal, *command, &block)
      traps[name] = before unless traps.key?(name)
      before
    end
    Kernel.define_method(:trap, &trap)
    Kernel.send(:private, :trap)
    [Kernel, Signal].each { |each| each.define_singleton_method(:trap, &trap) }
    @original_trap = original
  end

  def restore_handlers
    @traps.each { |name, before| @original_trap.call(name, before || 'DEFAULT') }
    @traps.clear
    @exits.clear
    set_trace_func(nil)
    ObjectSpace.each_object(TracePoint) { |each| each.disable if each.enabled? }
  end

  def end_threads
    others = Thread.list - [Thread.current]
    others.each(&:kill)
    others.each { |each| each.join(1) }
  end

  def restore_methods
    ObjectSpace.each_object(Module).to_a.each do |each|
      saved = @modules[each]
      if saved
        restore_methods_of(each, saved)
        # What was mixed in can't be taken out, but emptied.
        (each.ancestors - [each]).each { |mixin| empty(mixin) unless @modules[mixin] }
      end
    end
    @modules.each { |each, saved| restore_methods_of(each, saved) if each.singleton_class? }
  end

  def restore_methods_of(each, saved)
    now = methods_of(each)
    (now.keys - saved.keys).each do |name|
      each.send(:remove_method, name) if script_method?(now[name])
    end
    saved.each do |name, method|
      next if now[name] == method || (now[name] && !script_method?(now[name]))
      before = $VERBOSE
      $VERBOSE = nil
      each.send(:define_method, name, method)
      each.send(visibility_of(method), name)
      $VERBOSE = before
    end
  rescue FrozenError, TypeError, NameError => error
    warn "#{each}: #{error.message}"
  end

  # Methods of classes are public but for those of Kernel and Object, which have all functions.
  def visibility_of(method)
    [Kernel, Object].include?(method.owner) && !method.name.end_with?('?') ? :private : :public
  end

  def empty(mixin)
    methods = methods_of(mixin)
    methods.each { |name, method| mixin.send(:remove_method, name) if script_method?(method) }
  rescue FrozenError, NameError
    nil
  end

  def restore_constants
    @constants.each do |each, saved|
      CONSTANTS.bind_call(each, false).each do |name|
        file, = LOCATION.bind_call(each, name, false)
        next unless of_script?(file)
        next if saved.include?(name) && !(each == Object && @values.key?(name))
        next if saved.include?(name) && each.const_get(name, false).equal?(@values[name])
        each.send(:remove_const, name)
        each.const_set(name, @values[name]) if each == Object && @values.key?(name)
      end
    end
    (@values.keys - Object.constants(false)).each { |name| Object.const_set(name, @values[name]) }
  rescue NameError => error
    warn error.message
  end

  def restore_variables
    main = TOPLEVEL_BINDING.receiver
    (main.instance_variables - @main_variables).each { |n| main.remove_instance_variable(n) }
    (Object.class_variables(false) - @class_variables).each { |n| Object.remove_class_variable(n) }
    script_globals.each { |name| eval("#{name} = nil") rescue nil }
    before = $VERBOSE
    $VERBOSE = nil
    @separators.each { |name, value| eval("#{name} = value") }
    $VERBOSE = @separators[:$VERBOSE]
  rescue NameError => error
    $VERBOSE = before
    warn error.message
  end
end
