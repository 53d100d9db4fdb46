use strict;
use warnings;

sub another_function {
    test::log('never, but long enough for a script that could hold a function');
}
