use strict;
use warnings;

no warnings 'recursion';

sub again {
    my $depth = shift;
    return again($depth + 1) + 1;  # @again
}

sub main {
    eval { again(0) };
    test::log('caught') if $@ =~ /^Recursion/;  # @caught
}
