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
# `own` is the stream that is tied, 0 or 1, `stream` the one to which it goes, and `target` a handle
# to which it goes instead.
sub TIEHANDLE { my ($class, $stream) = @_; bless {own => $stream, stream => $stream}, $class }
sub _put {
    my ($self, $text) = @_;
    local ($,, $\);
    return print {$self->{target}} $text if $self->{target};
    _print($self->{stream}, $text);
    return 1;
}
sub PRINT {
    my $self = shift;
    return _put($self, join($, // '', map { $_ // '' } @_) . ($\ // ''));
}
sub PRINTF {
    my $self = shift;
    my $format = shift;
    return _put($self, sprintf($format, @_));
}
sub WRITE {
    my ($self, $text, $length, $offset) = @_;
    my $part = substr($text, $offset // 0, $length // length $text);
    _put($self, $part);
    return length $part;
}
sub FILENO { $_[0]{target} ? fileno $_[0]{target} : $_[0]{stream} + 1 }
sub BINMODE { 1 }
sub CLOSE { delete $_[0]{target}; 1 }
sub EOF { 1 }
# The stream of the run to which a handle or descriptor leads, if any.
sub _stream_of {
    my ($self, $source) = @_;
    my $number = $source =~ /^\d+$/ ? $source
        : fileno(ref $source || ref \$source eq 'GLOB' ? $source : "main::$source");
    return $number - 1 if ($number // 0) == 1 || ($number // 0) == 2;
    my $file = join ' ', (stat '/proc/self/fd/' . ($number // ''))[0, 1];
    return (grep { $file eq join ' ', (stat "/proc/self/fd/" . ($_ + 1))[0, 1] }
            $self->{own}, 0, 1)[0];
}
# A script that opens the stream anew means what it names from now on: a text, a stream of the run
# once more, as when it has kept the one that was there, or a file of its own.
sub OPEN {
    my ($self, $mode, @rest) = @_;
    if (@rest && ref $rest[0] eq 'SCALAR') {
        open(my $memory, $mode, @rest) or return;
        $self->{target} = $memory;
        return 1;
    }
    my ($kind, $source) = @rest ? ($mode, $rest[0]) : $mode =~ /^\s*(>>?&=?)\s*(.*?)\s*$/;
    my $stream = ($kind // '') =~ /^\s*>>?&=?\s*$/ ? _stream_of($self, $source) : undef;
    if (defined $stream) {
        @$self{qw(stream target)} = ($stream, undef);
        return 1;
    }
    my $handle = $self->{own} ? \*STDERR : \*STDOUT;
    untie *$handle;
    return @rest ? open(*$handle, $mode, @rest) : open(*$handle, $mode);
}
tie *STDOUT, 'tamrix::Output', 0;
tie *STDERR, 'tamrix::Output', 1;
