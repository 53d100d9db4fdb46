use strict;
use warnings;

use POSIX ();

sub main {
    POSIX::close($_) for 0 .. 2;
    test::log('it goes on');  # @on
}
