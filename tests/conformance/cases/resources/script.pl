use strict;
use warnings;

use Cwd;
use File::Basename;

sub main {
    test::compare(tamrixinfo::testCaseName(), 'resources');  # @case
    test::verify(-d tamrixinfo::resultDir());  # @results
    test::compare(basename(getcwd()), 'resources');  # @folder
}
