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
sub Step { my ($expression, $code) = @_; tamrix::StepContext->_addStep(_pattern($expression), _code($code)) }
*Given = *When = *Then = \&Step;
for my $name (qw(BeforeFeature AfterFeature BeforeScenario AfterScenario BeforeStep AfterStep)) {
    *$name = sub { tamrix::StepContext->_addHook($name, @_ > 1 ? shift : '', _code(@_)) };
}
sub ParameterType {
    my ($name, $patterns, $code) = @_;
    my @patterns = map { (_pattern($_))[0] } ref $patterns eq 'ARRAY' ? @$patterns : $patterns;
    tamrix::StepContext->_addType($name, \@patterns, defined $code ? _code($code) : undef);
}
sub Pending { die bless {message => $_[0] // 'the step definition is to be written'}, 'bdd::Pending' }

package bdd::Pending;
our @ISA = ('tamrix::Error');

# What steps and hooks keep for each other.
package tamrix::StepContext;
sub TIEHASH { bless {}, $_[0] }
sub FETCH { my $found = $_[0]->_find($_[1]); $found && $found->[0] }
sub STORE { my ($self, $name, $value) = @_; $self->_set($name, $value) }
sub EXISTS { !!$_[0]->_find($_[1]) }
sub DELETE { my ($self, $name) = @_; my $value = $self->FETCH($name); $self->_remove($name); $value }
sub CLEAR { my $self = shift; $self->_remove($_) for keys %{$self->_all} }
sub FIRSTKEY { my $self = shift; $self->{keys} = [sort keys %{$self->_all}]; shift @{$self->{keys}} }
sub NEXTKEY { shift @{$_[0]{keys}} }
sub _make { tie my %context, __PACKAGE__; \%context }

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

1;
