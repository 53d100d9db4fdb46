use strict;
use warnings;

use bdd;

BeforeScenario sub {
    my $context = shift;
    test::log("before $context->{scenario}");  # @begin
};

AfterScenario sub {
    my $context = shift;
    test::log("after with $context->{count} pies");  # @end
};

Given 'an empty order', sub {
    my $context = shift;
    $context->{count} = 0;
};  # @step1

When '{int} pie(s) for {string} is/are ordered', sub {
    my ($context, $count, $name) = @_;
    $context->{count} += $count;
    test::log("for $name");  # @order
};  # @step2

Then '{int} pies arrive', sub {
    my ($context, $count) = @_;
    test::compare($context->{count}, $count, 'pies');  # @arrive
};  # @step3

Then 'it costs {float}', sub {
    my ($context, $price) = @_;
    test::compare($price, 4.5);  # @costs
};  # @step4

When 'these are ordered', sub {
    my $context = shift;
    $context->{count} += $_->{count} for @{$context->{table}};
};  # @step5

When 'the note says', sub {
    my $context = shift;
    $context->{note} = $context->{text};
};  # @step6

Then 'the note has {int} lines', sub {
    my ($context, $count) = @_;
    my @lines = split /\n/, $context->{note};
    test::compare(scalar @lines, $count);  # @lines
};  # @step7

Step 'an error is raised', sub {
    die 'in a step';  # @error
};  # @step8

Step 'this is not reached', sub {
    test::fail('reached');
};  # @step9
