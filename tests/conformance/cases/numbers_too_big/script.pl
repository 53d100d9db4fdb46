use strict;
use warnings;

sub main {
    startApplication('widgets');
    my $window = waitForObject("{type='Window'}");
    for my $number (2147483648, 9007199254740993, 2.7) {
        if (eval { $window->spread("Wide", $number); 1 }) {
            test::fail('it was cut');
        } else {
            test::log('refused');  # @refused
        }
    }
}
