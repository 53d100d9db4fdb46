use strict;
use warnings;

sub main {
    test::compare(testSettings->waitForObjectTimeout, 20000);  # @number
}
