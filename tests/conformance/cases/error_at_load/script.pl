use strict;
use warnings;

sub prepare {
    die 'too early';  # @prepare
}

prepare();  # @load

sub main {
    test::log('never');
}
