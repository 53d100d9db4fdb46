use strict;
use warnings;

sub check {
    my $value = shift;
    return test::verify($value > 3, 'big enough');  # @check
}

sub main {
    check(5);
    check(1);  # @main
}
