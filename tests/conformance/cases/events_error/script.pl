use strict;
use warnings;

sub handler {
    die 'in the handler';  # @handler
}

sub main {
    startApplication('widgets');
    my $window = waitForObject("{type='Window'}");
    installEventHandler('Window', 'WindowTitleChange', 'handler');
    $window->windowTitle('another');
    snooze(0.3);
    test::log('it goes on');  # @on
}
