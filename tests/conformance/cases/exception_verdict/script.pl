use strict;
use warnings;

sub good { 1 }

sub bad { die "wrong\n" }

sub main {
    test::exception(\&bad, 'it raises');  # @raises
    test::exception(\&good, 'it does not');  # @passes
}
