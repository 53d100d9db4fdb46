use strict;
use warnings;

sub attempt {
    my $call = shift;
    if (eval { $call->(); 1 }) {
        test::fail('it was taken');
    } elsif ($@->isa('tamrix::Error')) {
        test::log('refused', "$@");  # @refused
    }
}

sub main {
    startApplication('widgets');
    my $window = waitForObject("{type='Window'}");
    attempt(sub { $window->windowTitel });
    attempt(sub { $window->add(1) });
    attempt(sub { $window->width(7) });
}
