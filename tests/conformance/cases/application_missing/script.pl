use strict;
use warnings;

sub main {
    eval { startApplication('no_such_program'); 1 } and return;
    test::log('caught') if $@->isa('tamrix::Error');  # @caught
}
