use strict;
use warnings;

sub inner {
    my $value = shift;
    die "no $value";  # @inner
}

sub outer {
    inner('number');  # @outer
}

sub main {
    outer();  # @main
}
