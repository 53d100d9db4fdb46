# The streams that scripts print to: what is written stands in order with the results. `puts` and
# the like come from the streams of Ruby.
class Tamrix::Output
  attr_reader :fileno

  def initialize(fileno)
    @fileno = fileno
  end

  def write(*texts) = texts.sum { |text| Tamrix::Native.write(@fileno, "#{text}") }

  def putc(character)
    write(character.is_a?(String) ? character[0] : character.chr)
    character
  end

  def flush
    Tamrix::Native.flush
    self
  end

  # Whoever writes to it, as a Logger, may ask; it stays open.
  def close = nil
  def binmode(*) = self
  def tty? = false
  def sync = true
  def sync=(value) end
  def external_encoding = Encoding::UTF_8

  alias syswrite write
  alias write_nonblock write
  alias fsync flush
  alias to_i fileno
  alias set_encoding binmode
  alias isatty tty?
  alias closed? tty?

  STANDARD = [new(1), new(2)].freeze
end
STDOUT.sync = true
