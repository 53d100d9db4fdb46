use strict;
use warnings;

sub condition {
    die 'no answer';
}

sub main {
    return if eval { waitFor(\&condition, 1000); 1 };
    test::log('caught') if $@->isa('tamrix::Error');  # @caught
}
