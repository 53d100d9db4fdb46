use strict;
use warnings;

sub main {
    eval {
        helper();  # @main
    };
    test::fail('caught');
}

sub helper {
    test::skip('from far inside');  # @skip
}
