use strict;
use warnings;

sub main {
    my $context = startApplication('widgets');
    test::verify(abs(time - $context->startTime->epoch) < 60);  # @age
}
