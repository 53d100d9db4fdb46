use strict;
use warnings;

sub main {
    startApplication('widgets');
    my $window = waitForObject("{type='Window'}");
    test::compare($window->windowTitle, 'Targets');  # @read
    $window->windowTitle("\x{c4}nderung");
    test::compare($window->windowTitle, "\x{c4}nderung");  # @written
    test::verify($window->visible);  # @flag
    test::compare($window->spread('Wide', 2), 'widewide');  # @method
    test::verify($window->geometry->width > 100);  # @nested
}
