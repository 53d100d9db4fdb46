use strict;
use warnings;

sub main {
    return if eval { source(findFile('scripts', 'source_error_faulty.pl')); 1 };
    test::log('caught') if $@->isa('tamrix::Error');  # @caught
}
