use strict;
use warnings;

use Cwd;
use File::Basename;

sub main {
    test::verify(!exists $leaves_traces::{left}, 'names of all modules');  # @names
    test::verify(!exists $ENV{TAMRIX_LEFT}, 'the environment');  # @environment
    test::compare(basename(getcwd()), 'leaves_traces_next', 'the folder');  # @folder
    test::verify(!exists $main::{test_global}, 'names of the script');  # @globals
}
