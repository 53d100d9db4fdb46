use strict;
use warnings;

sub main {
    test::log('before');  # @before
    exit;
    test::log('never');
}

sub cleanup {
    test::log('cleanup');  # @cleanup
}
