# What scripts print.
package tamrix::Output;
# Characters or bytes, and Perl does not say which: bytes that are UTF-8 are nothing else.
sub _print {
    my ($stream, $text) = @_;
    utf8::decode($text) unless utf8::is_utf8($text);
    # Perl warns of a function of the script's own by a name of the library, which it may have.
    return if $stream && $text =~ /^Subroutine (\w+) redefined/ && grep { $_ eq $1 } @tamrix::GLOBALS;
    tamrix::_write($stream, $text);
}
sub TIEHANDLE { my ($class, $stream) = @_; bless \$stream, $class }
sub PRINT {
    my $self = shift;
    _print($$self, join($, // '', map { $_ // '' } @_) . ($\ // ''));
    return 1;
}
sub PRINTF {
    my $self = shift;
    my $format = shift;
    _print($$self, sprintf($format, @_));
    return 1;
}
sub WRITE {
    my ($self, $text, $length, $offset) = @_;
    my $part = substr($text, $offset // 0, $length // length $text);
    _print($$self, $part);
    return length $part;
}
sub FILENO { ${$_[0]} + 1 }
sub BINMODE { 1 }
sub CLOSE { 1 }
sub EOF { 1 }
# A script that opens the stream anew means a file of its own from now on.
sub OPEN {
    my ($self, $mode, @rest) = @_;
    my $handle = $$self ? \*STDERR : \*STDOUT;
    untie *$handle;
    return @rest ? open(*$handle, $mode, @rest) : open(*$handle, $mode);
}
tie *STDOUT, 'tamrix::Output', 0;
tie *STDERR, 'tamrix::Output', 1;
