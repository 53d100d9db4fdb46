use strict;
use warnings;

sub main {
    eval { die "wrong\n" };
    chomp(my $error = $@);
    test::log('caught', $error);  # @caught
    test::pass('it goes on');  # @on
}
