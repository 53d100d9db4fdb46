use strict;
use warnings;

our $test_global;

sub main {
    $leaves_traces::left = 1;
    $ENV{TAMRIX_LEFT} = 'yes';
    chdir '/';
    $test_global = 1;
    test::startSection('left open');  # @open
}
