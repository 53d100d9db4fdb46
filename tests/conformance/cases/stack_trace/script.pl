use strict;
use warnings;

sub inner {
    return test::stackTrace();
}

sub outer {
    return inner();
}

sub main {
    test::compare(scalar @{outer()}, 3);  # @depth
    test::compare(scalar @{test::stackTrace(0, 1)}, 1);  # @most
}
