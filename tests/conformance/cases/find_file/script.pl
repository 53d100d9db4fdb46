use strict;
use warnings;

use File::Basename;

sub main {
    my $path = findFile('testdata', 'find_file_data.tsv');
    test::compare(basename($path), 'find_file_data.tsv');  # @name
    return if eval { findFile('testdata', 'no_such_file.tsv'); 1 };
    test::log('refused') if $@->isa('tamrix::Error');  # @refused
}
