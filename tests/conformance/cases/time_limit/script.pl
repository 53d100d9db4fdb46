use strict;
use warnings;

sub main {
    test::log('before');  # @before
    1 while 1;
}
