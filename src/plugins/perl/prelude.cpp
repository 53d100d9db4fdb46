#include "plugins/perl/prelude.h"

namespace Tamrix::PerlPlugin {

// Its lines are none of scripts: the file has no path.
const char* const preludeText = R"perl(#line 1 "<tamrix>"
package tamrix;
$INC{'tamrix.pm'} = $INC{'bdd.pm'} = '<tamrix>';
our @GLOBALS;

sub import {
    my $target = caller;
    *{"${target}::$_"} = \&{"main::$_"} for grep { defined &{"main::$_"} } @GLOBALS;
}

sub _text { "$_[0]" }
sub _value { my $value = $_[0]; $value }
sub _truth { !!$_[0] }
sub _list { [@{$_[0]}] }
sub _map { +{%{$_[0]}} }
sub _equal { $_[0] eq $_[1] }
sub _time { require Time::Piece; Time::Piece::localtime($_[0]) }
sub _epoch { my $time = shift; $time->can('hires_epoch') ? $time->hires_epoch : $time->epoch }
sub _message {
    my $error = shift;
    return "$error" if overload::Method($error, '""');
    return $error->message if UNIVERSAL::can($error, 'message');
    return '';
}
# Takes away what a script has left: all names in main that were not there before.
sub _names { +{map { $_ => 1 } keys %main::} }
sub _forget {
    my ($known, $files) = @_;
    for my $name (grep { !$known->{$_} } keys %main::) {
        delete $main::{$name};
    }
    delete $INC{$_} for grep { !$files->{$_} } keys %INC;
}

package tamrix::Error;
use overload '""' => sub { $_[0]{message} }, 'bool' => sub { 1 }, fallback => 1;
sub new {
    my ($class, $message) = @_;
    my (undef, $file, $line) = caller(1);
    return bless {message => $message, file => $file, line => $line}, $class;
}
sub throw { my $class = shift; die $class->new(@_) }
sub message { $_[0]{message} }
sub file { $_[0]{file} }
sub line { $_[0]{line} }
@tamrix::LookupError::ISA = @tamrix::VerificationError::ISA = @tamrix::MemberError::ISA =
    @tamrix::ArgumentError::ISA = ('tamrix::Error');

package tamrix::Handle;
sub CLONE_SKIP { 1 }
sub DESTROY { }

package tamrix::Object;
our @ISA = ('tamrix::Handle');
use overload
    '""' => \&_text,
    'bool' => \&_isThere,
    '==' => \&_isSame,
    '!=' => sub { !_isSame(@_) },
    'eq' => sub { ref $_[1] ? _isSame(@_) : _text($_[0]) eq $_[1] },
    'ne' => sub { ref $_[1] ? !_isSame(@_) : _text($_[0]) ne $_[1] },
    fallback => 1;
sub can {
    my ($self, $name) = @_;
    my $own = UNIVERSAL::can($self, $name);
    return $own if $own || !ref $self;
    return unless grep { $_ eq $name } @{_members($self)};
    return sub { my $object = shift; $object->$name(@_) };
}

package tamrix::Native;
our @ISA = ('tamrix::Handle');

package tamrix::ApplicationContext;
our @ISA = ('tamrix::Handle');
use overload
    '""' => \&_text,
    '==' => sub { ref $_[1] && _id($_[0]) == (_id($_[1]) // -1) },
    '!=' => sub { !ref $_[1] || _id($_[0]) != (_id($_[1]) // -1) },
    'bool' => sub { 1 },
    fallback => 1;

package tamrix::DataSet;
our @ISA = ('tamrix::Handle');
use overload '@{}' => \&_records, 'bool' => sub { 1 }, fallback => 1;

package tamrix::Record;
our @ISA = ('tamrix::Handle');
use overload '@{}' => \&_values, '%{}' => \&_fields, 'bool' => sub { 1 }, fallback => 1;

# What scripts print.
package tamrix::Output;
sub TIEHANDLE { my ($class, $stream) = @_; bless \$stream, $class }
sub PRINT {
    my $self = shift;
    tamrix::_print($$self, join($, // '', map { $_ // '' } @_) . ($\ // ''));
    return 1;
}
sub PRINTF {
    my $self = shift;
    my $format = shift;
    tamrix::_print($$self, sprintf($format, @_));
    return 1;
}
sub WRITE {
    my ($self, $text, $length, $offset) = @_;
    my $part = substr($text, $offset // 0, $length // length $text);
    tamrix::_print($$self, $part);
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

# Steps, hooks and parameter types of feature files.
package bdd;
sub import {
    my $target = caller;
    *{"${target}::$_"} = \&$_
        for qw(Given When Then Step BeforeFeature AfterFeature BeforeScenario AfterScenario
               BeforeStep AfterStep ParameterType Pending);
}
sub _pattern {
    my $pattern = shift;
    return ($pattern, 0) unless ref $pattern eq 'Regexp';
    my ($text, $flags) = re::regexp_pattern($pattern);
    $flags =~ tr/u//d;
    die tamrix::ArgumentError->new("Steps know the flags i, m and s of regular expressions only")
        if $flags =~ /[^ims]/;
    return ($flags ne '' ? "(?$flags)$text" : $text, 1);
}
sub _code {
    die tamrix::ArgumentError->new("What is registered has to be a function")
        unless ref $_[0] eq 'CODE';
    $_[0];
}
sub Step { my ($expression, $code) = @_; _step(_pattern($expression), _code($code)) }
*Given = *When = *Then = \&Step;
sub BeforeFeature { _hook(0, 0, @_ > 1 ? shift : '', _code(@_)) }
sub AfterFeature { _hook(0, 1, @_ > 1 ? shift : '', _code(@_)) }
sub BeforeScenario { _hook(1, 0, @_ > 1 ? shift : '', _code(@_)) }
sub AfterScenario { _hook(1, 1, @_ > 1 ? shift : '', _code(@_)) }
sub BeforeStep { _hook(2, 0, @_ > 1 ? shift : '', _code(@_)) }
sub AfterStep { _hook(2, 1, @_ > 1 ? shift : '', _code(@_)) }
sub ParameterType {
    my ($name, $patterns, $code) = @_;
    _type($name, [map { (_pattern($_))[0] } ref $patterns eq 'ARRAY' ? @$patterns : $patterns],
          defined $code ? _code($code) : undef);
}
sub Pending { die bless {message => $_[0] // 'the step definition is to be written'}, 'bdd::Pending' }

package bdd::Pending;
our @ISA = ('tamrix::Error');

package bdd::Context;
sub TIEHASH { bless {}, $_[0] }
sub FETCH { _get($_[1]) }
sub STORE { _set($_[1], $_[2]) }
sub EXISTS { exists _all()->{$_[1]} }
sub DELETE { _remove($_[1]) }
sub CLEAR { _remove($_) for keys %{_all()} }
sub FIRSTKEY { my $self = shift; $self->{keys} = [sort keys %{_all()}]; shift @{$self->{keys}} }
sub NEXTKEY { shift @{$_[0]{keys}} }
sub _make { tie my %context, 'bdd::Context'; \%context }

# The rows of a step's table as hashes.
package bdd::Table;
use overload '@{}' => sub { $_[0]->() ->{rows} }, 'bool' => sub { 1 }, fallback => 1;
sub _make {
    my $raw = shift;
    my ($headers, @cells) = @$raw;
    my @rows = map { my $row = $_; +{map { $headers->[$_] => $row->[$_] } 0 .. $#$headers} } @cells;
    my $table = {raw => $raw, headers => $headers, rows => \@rows};
    return bless sub { $table }, 'bdd::Table';
}
sub headers { $_[0]->()->{headers} }
sub rows { $_[0]->()->{rows} }
sub raw { $_[0]->()->{raw} }

# Files and programs of another machine.
package RemoteSystem;
sub new {
    my ($class, $host, $port) = @_;
    my $handle = defined $host || defined $port
        ? main::_tamrix_connect_to_remote_system($host // '', $port // -1)
        : main::_tamrix_connect_to_remote_system();
    return bless {handle => $handle}, $class;
}
sub _open { $_[0]{handle} // die tamrix::Error->new('The remote system is closed') }
sub close {
    my $self = shift;
    my $handle = $self->_open;
    delete $self->{handle};
    main::_tamrix_close_remote_system_connection($handle);
}
sub getEnvironmentVariable { main::_tamrix_remote_get_environment_variable($_[0]->_open, "$_[1]") }
sub getOSName { main::_tamrix_remote_get_os_name($_[0]->_open) }
sub exists { main::_tamrix_remote_path_exists($_[0]->_open, "$_[1]") }
sub rename { main::_tamrix_remote_rename_path($_[0]->_open, "$_[1]", "$_[2]") }
sub createPath { main::_tamrix_remote_create_path($_[0]->_open, "$_[1]", !!$_[2]) }
sub deletePath { main::_tamrix_remote_delete_path($_[0]->_open, "$_[1]", !!$_[2]) }
sub createFile {
    my ($self, $path, $content, $encoding) = @_;
    main::_tamrix_remote_create_file($self->_open, "$path", $content // '', $encoding // 'UTF-8');
}
sub deleteFile { main::_tamrix_remote_delete_file($_[0]->_open, "$_[1]") }
sub copy { main::_tamrix_remote_copy_path($_[0]->_open, "$_[1]", "$_[2]") }
sub upload { main::_tamrix_remote_upload_file($_[0]->_open, "$_[1]", "$_[2]") }
sub download { main::_tamrix_remote_download_file($_[0]->_open, "$_[1]", "$_[2]") }
sub listFiles { main::_tamrix_remote_get_directory_content($_[0]->_open, "$_[1]") }
sub getPathProperty { main::_tamrix_remote_get_path_property($_[0]->_open, "$_[1]", "$_[2]") }
sub execute {
    my ($self, $command, $cwd, $env, $options) = @_;
    my $result = main::_tamrix_remote_execute_command(
        $self->_open, ref $command eq 'ARRAY' ? [map { "$_" } @$command] : $command, $cwd // '',
        $env // {}, $options // {});
    return {%$result, exitcode => $result->{exitcode} + 0};
}
1;
)perl";

}  // namespace Tamrix::PerlPlugin
