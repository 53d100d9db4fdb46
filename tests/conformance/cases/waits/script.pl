use strict;
use warnings;

sub main {
    my $calls = 0;
    test::verify(waitFor(sub { ++$calls > 2 }, 5000));  # @callable
    test::compare($calls, 3);  # @calls
    test::verify(waitFor('$calls == 3', 1000));  # @text
    test::verify(!waitFor(sub { 0 }, 50));  # @over
}
