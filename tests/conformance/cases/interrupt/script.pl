use strict;
use warnings;

sub main {
    test::log('looping');  # @looping
    1 while 1;
}
