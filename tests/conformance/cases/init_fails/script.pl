use strict;
use warnings;

sub init {
    die 'not ready';  # @init
}

sub main {
    test::log('never');
}

sub cleanup {
    test::log('cleanup');  # @cleanup
}
