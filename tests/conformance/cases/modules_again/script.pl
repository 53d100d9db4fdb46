use strict;
use warnings;

use modules_helper;

sub main {
    test::compare(modules_helper::count(), 0);  # @count
}
