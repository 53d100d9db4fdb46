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

Given 'an empty order', sub {  # @step1
    my $context = shift;
    $context->{count} = 0;
};

When '{int} pie(s) for {string} is/are ordered', sub {  # @step2
    my ($context, $count, $name) = @_;
    $context->{count} += $count;
    test::log("for $name");  # @order
};

Then '{int} pies arrive', sub {  # @step3
    my ($context, $count) = @_;
    test::compare($context->{count}, $count, 'pies');  # @arrive
};

Then 'it costs {float}', sub {  # @step4
    my ($context, $price) = @_;
    test::compare($price, 4.5);  # @costs
};

When 'these are ordered', sub {  # @step5
    my $context = shift;
    $context->{count} += $_->{count} for @{$context->{table}};
};

When 'the note says', sub {  # @step6
    my $context = shift;
    $context->{note} = $context->{text};
};

Then 'the note has {int} lines', sub {  # @step7
    my ($context, $count) = @_;
    my @lines = split /\n/, $context->{note};
    test::compare(scalar @lines, $count);  # @lines
};

Step 'an error is raised', sub {  # @step8
    die 'in a step';  # @error
};

Step 'this is not reached', sub {  # @step9
    test::fail('reached');
};
