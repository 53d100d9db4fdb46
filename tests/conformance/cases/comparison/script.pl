use strict;
use warnings;

sub main {
    test::compare(1, 1);  # @integers
    test::compare([1, [2, 3]], [1, [2, 3]]);  # @lists
    test::compare({a => 1, b => [2]}, {b => [2], a => 1});  # @maps
    test::compare("\x{e4}\x{20ac}", "\x{e4}\x{20ac}");  # @texts
    test::compare("line 1\nline 2", "line 1\nline 2");  # @lines
}
