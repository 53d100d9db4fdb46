use strict;
use warnings;

sub main {
    my @results = (test::verify(1), test::verify(0), test::compare(1, 1), test::compare(1, 2));  # @four
    for my $result (@results) {
        if ($result) {
            test::log('true');  # @true
        } else {
            test::log('false');  # @false
        }
    }
}
