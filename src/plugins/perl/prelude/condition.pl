# What the running call of a verdict says in its script: the source text of its first argument, or of
# the one by the parameter's name, and the values in it. Values are variables, elements of arrays and
# hashes, and properties of an application's objects; no code of the script runs.
package tamrix::Condition;
use strict;
no warnings 'experimental::builtin';

my $mostCharacters = 20_000;
my $mostValues = 20;
# Perl may take a later line of a statement on several lines for its own.
my $mostLinesAbove = 5;

my $name = qr/(?:::)?\w+(?:::\w+)*/;
my $item = qr/-?\w+|'[^'\\]*'|"[^"\\\$\@]*"|\$\w+/;
my $step = qr/(?:->)?(?:\[\s*(?:-?\d+|\$\w+)\s*\]|\{\s*(?:$item)\s*\})|->[A-Za-z_]\w*(?![\w:]|\s*\()/;
# Of brackets those that have no others of their kind in them.
my $quoted = qr/
    (?:q|qq|qw|qr|m)(?!\w|\s*=>|\s*,)\s*
    (?: \((?:[^()\\]|\\.)*\) | \{(?:[^{}\\]|\\.)*\} | \[(?:[^\[\]\\]|\\.)*\] | <(?:[^<>\\]|\\.)*>
      | (?<quote>[^\w\s]) (?:(?!\k<quote>)[^\\]|\\.)* \k<quote> ) [a-z]*
    | '(?:[^'\\]|\\.)*' | "(?:[^"\\]|\\.)*" /xs;
my $match = qr{/(?:[^/\\\n]|\\.)*/[a-z]*};

# In the order in which they are tried.
my @forms = (
    [operator => qr/\$#/],
    [variable => qr/[\$\@%]$name(?:$step)*/],
    [constant => $quoted],
    [constant => qr/\d[\w.]*/],
    [word => qr/[A-Za-z_]\w*(?:::\w+)*/],
    [separator => qr/,|=>/],
    [semicolon => qr/;/],
    [open => qr/[(\[{]/],
    [close => qr/[)\]}]/],
    [operator => qr/->|=~|!~|./s],
);

# The tokens of the source, each with kind, text and place, to the end of the first statement that
# ends outside of brackets behind the first line.
sub _tokens {
    my $source = substr shift, 0, $mostCharacters;
    my ($firstLine) = $source =~ /^([^\n]*)/;
    my ($depth, @tokens) = (0);
    pos($source) = 0;
    while ($source =~ /\G(?:\s+|#[^\n]*)*/gc && pos($source) < length $source) {
        my $place = pos $source;
        my $isOperand = !@tokens || $tokens[-1]{kind} =~ /^(?:operator|open|separator|semicolon)$/;
        my $kind;
        if ($isOperand && $source =~ /\G$match/gc) {
            $kind = 'constant';
        } else {
            for my $form (@forms) {
                next unless $source =~ /\G$form->[1]/gc;
                $kind = $form->[0];
                last;
            }
        }
        my $text = substr $source, $place, pos($source) - $place;
        push @tokens, {kind => $kind, text => $text, start => $place, end => pos $source};
        # Of blocks a statement may have any in its brackets.
        $depth += $text =~ /^[(\[]$/ ? 1 : $text =~ /^[)\]]$/ ? -1 : 0;
        last if $kind eq 'semicolon' && $depth <= 0 && $place > length $firstLine;
    }
    return @tokens;
}

# The arguments between the bracket at the place and its other one, each as tokens; the place of that.
sub _arguments {
    my ($tokens, $place) = @_;
    my ($depth, @arguments) = (0, []);
    for my $index ($place .. $#$tokens) {
        my $token = $tokens->[$index];
        $depth += $token->{kind} eq 'open' ? 1 : $token->{kind} eq 'close' ? -1 : 0;
        return ($index, grep { @$_ } @arguments) if $depth == 0;
        if ($depth == 1 && $token->{kind} eq 'separator') {
            push @arguments, [];
        } elsif ($index > $place) {
            push @{$arguments[-1]}, $token;
        }
    }
    return;
}

# The conditions of verdicts that don't end in front of a place in the source, each as tokens.
sub _conditions {
    my ($source, $end, $parameter) = @_;
    my @tokens = _tokens($source);
    my @conditions;
    for my $index (0 .. $#tokens - 1) {
        next unless $tokens[$index]{kind} eq 'word' && $tokens[$index]{text} =~ /^test::x?verify$/;
        my ($close, @arguments) = _arguments(\@tokens, $index + 1);
        next unless @arguments && $tokens[$close]{end} > $end;
        my $condition = $arguments[0];
        # By name it stands behind "-name".
        for my $each (0 .. $#arguments - 1) {
            my $text = join '', map { $_->{text} } @{$arguments[$each]};
            $condition = $arguments[$each + 1] if $text eq "-$parameter";
        }
        push @conditions, $condition;
    }
    return @conditions;
}

# The variables that mean something where the condition stands: not those in blocks.
sub _variables {
    my ($source, @tokens) = @_;
    my ($blockDepth, %seen, @variables) = (0);
    for my $index (0 .. $#tokens) {
        my $token = $tokens[$index];
        if ($token->{kind} eq 'open') {
            my $startsBlock = $token->{text} eq '{' && $index > 0 && $tokens[$index - 1]{kind} eq 'word';
            ++$blockDepth if $blockDepth || $startsBlock;
        } elsif ($token->{kind} eq 'close') {
            --$blockDepth if $blockDepth;
        }
        next if $token->{kind} ne 'variable' || $blockDepth;
        # What is taken in a way that can't be read is of another variable: $list[f()].
        my $isOther = substr($source, $token->{end}, 1) =~ /[\[{]/ && $token->{text} !~ /[\[{]/;
        push @variables, $token->{text} unless $isOther || $seen{$token->{text}}++;
    }
    return @variables;
}

# A reference to the variable; nothing when there is none.
sub _variable {
    my ($frame, $variable) = @_;
    return $frame->{variables}{$variable} if exists $frame->{variables}{$variable};
    my ($sign, $whole) = $variable =~ /^(.)(.*)/;
    return if $whole =~ /^\d/;
    my ($package, $short) = $whole =~ /^(.*)::(\w+)$/ ? ($1, $2) : ($frame->{package}, $whole);
    $package = 'main' if $short eq '_' || $package eq '';
    no strict 'refs';
    my $glob = (\%{"${package}::"})->{$short};
    return unless ref \$glob eq 'GLOB';
    return *{$glob}{{'$' => 'SCALAR', '@' => 'ARRAY', '%' => 'HASH'}->{$sign}};
}

# The value in the element, in an array; nothing when it is not there, or can't be had without code
# of the script.
sub _element {
    my ($frame, $container, $index, $key) = @_;
    my ($kind, $operator) = defined $index ? ('ARRAY', '@{}') : ('HASH', '%{}');
    return if (builtin::reftype($container) // '') ne $kind || overload::Method($container, $operator);
    my $place = $index // $key;
    if ($place =~ /^\$/) {
        my $read = _read($frame, $place) // return;
        $place = $read->[0];
        return if ref $place || !defined $place;
    } else {
        $place =~ s/^(['"])(.*)\1$/$2/s;
    }
    if ($kind eq 'ARRAY') {
        return if tied @$container || !exists $container->[$place];
        return [$container->[$place]];
    }
    return if tied %$container || !exists $container->{$place};
    return [$container->{$place}];
}

# The same for a variable and what is taken of it.
sub _read {
    my ($frame, $path) = @_;
    my ($variable, $steps) = $path =~ /^([\$\@%][\w:]+)(.*)/s;
    my $sign = $variable =~ /^\$/ && $steps =~ /^([\[{])/ ? ($1 eq '[' ? '@' : '%') : '';
    # The first step tells the kind of variable: $h{key} is in %h.
    $variable =~ s/^./$sign/ if $sign;
    my $value = _variable($frame, $variable) // return;
    if (ref $value eq 'SCALAR' || ref $value eq 'REF') {
        return if tied $$value;
        $value = $$value;
    } elsif (builtin::reftype($value) eq 'ARRAY' ? tied @$value : tied %$value) {
        return;
    }
    while ($steps =~ /\G(?:->)?(?:\[\s*([^\]]*?)\s*\]|\{\s*([^}]*?)\s*\}|(\w+))/g) {
        my $found = defined $3 ? tamrix::Object::_property($value, $3) : _element($frame, $value, $1, $2);
        return unless $found;
        $value = $found->[0];
    }
    return [$value];
}

# The condition's text, then variables and their values in turns; nothing where there is nothing to
# tell: a plain constant, a file that is another one by now, two verdicts on one line.
sub explain {
    my ($frame, $parameter) = @_;
    local ($!, $/) = (0, "\n");
    open my $file, '<:raw', $frame->{file} or return;
    my @lines = <$file>;
    close $file;
    utf8::decode($_) for @lines;
    my $line = $frame->{line} - 1;
    for my $above (0 .. $mostLinesAbove) {
        my $first = $line - $above;
        last if $first < 0;
        my $source = join '', @lines[$first .. $#lines];
        my $place = $above ? length join('', @lines[$first .. $line - 1]) : 0;
        my @conditions = _conditions($source, $place, $parameter);
        next unless @conditions;
        my @tokens = @{$conditions[0]};
        return if @conditions > 1 || !grep { $_->{kind} =~ /^(?:variable|word)$/ } @tokens;
        my $text = substr $source, $tokens[0]{start}, $tokens[-1]{end} - $tokens[0]{start};
        # One line, however it was broken.
        $text =~ s/\s+/ /g if $text =~ /\n/;
        my @told = ($text);
        for my $variable (_variables($source, @tokens)) {
            my $read = @told < 2 * $mostValues ? _read($frame, $variable) : undef;
            push @told, $variable, $read->[0] if $read && ref $read->[0] ne 'CODE';
        }
        return \@told;
    }
    return;
}

1;
