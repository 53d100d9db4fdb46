use strict;
use warnings;

sub main {
    test::log('before');  # @before
    test::skip('not here', 'the reason');  # @skip
    test::log('never');
}

sub cleanup {
    test::log('cleanup');  # @cleanup
}
