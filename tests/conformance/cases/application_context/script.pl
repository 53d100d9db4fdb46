use strict;
use warnings;

sub main {
    my $context = startApplication('widgets');
    test::verify($context->isRunning);  # @running
    test::verify($context->pid > 0);  # @pid
    test::compare(currentApplicationContext()->name, $context->name);  # @current
    test::compare(scalar @{applicationContextList()}, 1);  # @list
}
