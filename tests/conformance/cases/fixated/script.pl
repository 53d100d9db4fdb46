use strict;
use warnings;

sub check {
    my $number = shift;
    test::fixateResultContext();
    test::compare($number % 2, 0, 'even');
    test::restoreResultContext();
    test::log('at its own line');  # @own
}

sub main {
    check(2);  # @two
    check(4);  # @four
}
