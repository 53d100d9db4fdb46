use strict;
use warnings;

sub main {
    my $number = 3;
    test::exception('fail_with($number)', 'it raises');  # @raises
    test::exception('1 + 1', 'it does not');  # @passes
}

sub fail_with {
    my $number = shift;
    die "number $number";
}
