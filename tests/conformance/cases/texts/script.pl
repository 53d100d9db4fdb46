use strict;
use warnings;

sub main {
    test::log("\x{e4}\x{f6}\x{fc} \x{20ac} \x{4e2d}\x{6587}");  # @plane
    test::log("\x{1f600} and \x{10ffff}");  # @beyond
    test::log("a tab\tand a\nnew line");  # @control
    test::log("a NUL\0in it");  # @nul
    test::log("\x{feff}mark");  # @mark
    test::log('');  # @empty
}
