use strict;
use warnings;

sub main {
    startApplication('widgets');
    my $window = waitForObject("{type='Window'}");
    my $seen = 0;
    installEventHandler('Window', 'WindowTitleChange', sub { ++$seen });
    $window->windowTitle('another');
    test::verify(waitFor(sub { $seen > 0 }, 5000));  # @seen
}
