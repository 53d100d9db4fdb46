use strict;
use warnings;

sub main {
    test::verify(!defined currentApplicationContext());  # @null
    test::compare(undef, undef);  # @equal
    test::log('without a detail', undef);  # @left
}
