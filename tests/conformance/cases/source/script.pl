use strict;
use warnings;

sub main {
    source(findFile('scripts', 'source_more.pl'));
    test::compare(twice(21), 42);  # @twice
    report();  # @main
}
