use strict;
use warnings;

sub attempt {
    my $call = shift;
    return if eval { $call->(); 1 };
    test::log('refused', "$@") if $@->isa('tamrix::Error');  # @refused
}

sub main {
    attempt(sub { test::compare(1) });
    attempt(sub { test::log() });
    attempt(sub { test::startSection() });
    attempt(sub { test::resultCount('nothing') });
}
