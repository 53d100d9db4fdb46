use strict;
use warnings;

use modules_helper;

sub main {
    modules_helper::check(7);  # @main
    test::compare(modules_helper::count(), 1);  # @count
}
