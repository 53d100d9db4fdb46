use strict;
use warnings;

sub main {
    die 'in main';  # @main
}

sub cleanup {
    die 'in cleanup';  # @cleanup
}
