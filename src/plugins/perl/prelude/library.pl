package tamrix;
no warnings 'experimental::builtin';
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
sub _time { require Time::Piece; Time::Piece::localtime($_[0]) }
sub _epoch { my $time = shift; $time->can('hires_epoch') ? $time->hires_epoch : $time->epoch }
sub _message {
    my $error = shift;
    return "$error" if overload::Method($error, '""');
    return $error->message if UNIVERSAL::can($error, 'message');
    return '';
}
# What stands behind the end of a script's code is read by the handle DATA.
sub _openData {
    my ($text) = @_;
    $text =~ /^__(?:DATA|END)__[ \t]*\r?\n/m or return;
    utf8::encode(my $bytes = substr($text, $+[0]));
    CORE::open(*main::DATA, '<:utf8', \$bytes);
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

# Whether two values are equal as testers mean it: texts as `eq` does, and as `==` does where one of
# them is a number or truth and the other looks like a number; undef equals undef alone; arrays and
# hashes by what they hold; objects of one class as their operators say, and else, as code, by
# identity.
sub _equal {
    my ($left, $right, $depth) = (@_, 0);
    die tamrix::Error->new('Values that are compared are nested deeper than 100: does a part of '
        . 'one hold itself?') if $depth > 100;
    return _equal_references($left, $right, $depth + 1) if ref $left || ref $right;
    return !defined $left && !defined $right if !defined $left || !defined $right;
    my @isTruth = map { builtin::is_bool($_) } $left, $right;
    return !!$left eq !!$right if $isTruth[0] && $isTruth[1];
    my $isOneNumber = grep { builtin::is_bool($_) || builtin::created_as_number($_) } $left, $right;
    my $areNumeric = !grep { !builtin::is_bool($_) && !_looks_like_number($_) } $left, $right;
    return $isOneNumber && $areNumeric ? $left == $right : $left eq $right;
}
sub _equal_references {
    my ($left, $right, $depth) = @_;
    my @kinds = (ref $left, ref $right);
    return !!1 if $kinds[0] && $kinds[1] && builtin::refaddr($left) == builtin::refaddr($right);
    if ($kinds[0] eq 'ARRAY' && $kinds[1] eq 'ARRAY') {
        return @$left == @$right && !grep { !_equal($left->[$_], $right->[$_], $depth) } 0 .. $#$left;
    }
    if ($kinds[0] eq 'HASH' && $kinds[1] eq 'HASH') {
        return keys %$left == keys %$right
            && !grep { !exists $right->{$_} || !_equal($left->{$_}, $right->{$_}, $depth) } keys %$left;
    }
    return tamrix::Object::_isSame($left, $right)
        if grep { UNIVERSAL::isa($_, 'tamrix::Object') } $left, $right;
    my @withText = grep { ref $_ eq 'Regexp' || (ref $_ && overload::Overloaded($_)) } $left, $right;
    return @withText && $left eq $right;
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
    '""' => sub { _text($_[0]) },
    'bool' => sub { _isThere($_[0]) },
    '==' => sub { _isSame($_[0], $_[1]) },
    '!=' => sub { !_isSame($_[0], $_[1]) },
    'eq' => sub { ref $_[1] ? _isSame($_[0], $_[1]) : _text($_[0]) eq $_[1] },
    'ne' => sub { ref $_[1] ? !_isSame($_[0], $_[1]) : _text($_[0]) ne $_[1] },
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
sub _isSame { UNIVERSAL::isa($_[1], __PACKAGE__) && _id($_[0]) == _id($_[1]) }
use overload
    '""' => sub { _text($_[0]) },
    '==' => sub { _isSame($_[0], $_[1]) },
    '!=' => sub { !_isSame($_[0], $_[1]) },
    'bool' => sub { 1 },
    fallback => 1;

package tamrix::DataSet;
our @ISA = ('tamrix::Handle');
use overload '@{}' => sub { _records($_[0]) }, 'bool' => sub { 1 }, fallback => 1;

package tamrix::Record;
our @ISA = ('tamrix::Handle');
sub _fields {
    my ($names, $values) = (_names($_[0]), _values($_[0]));
    return {map { $names->[$_] => $values->[$_] // '' } 0 .. $#$names};
}
use overload '@{}' => sub { _values($_[0]) }, '%{}' => \&_fields, 'bool' => sub { 1 }, fallback => 1;
