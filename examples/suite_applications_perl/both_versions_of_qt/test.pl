# Drives the same scene in a program with Qt 5 and in one with Qt 6, side by side. Nobody has to say
# which is which.

use strict;
use warnings;

sub main {
    my @programs = (startApplication('scene'), startApplication('scene6'));
    for my $program (@programs) {
        setApplicationContext($program);
        test::log('Greeting in ' . $program->toolkitVersion);
        fill("{name='who'}", 'Ada');
        click("{name='greet'}");
        test::expect("{name='greeting'}", {text => 'Hello, Ada'}, -comment => $program->toolkitVersion);
    }
}
