use strict;
use warnings;

use bdd;

ParameterType 'colour', 'red|green', sub { uc shift };

BeforeScenario '@special', sub {
    test::log('only for the tag');  # @special
};

AfterFeature sub {
    my $context = shift;
    test::log("done with $context->{feature}");  # @done
};

Given 'a {colour} light', sub {
    my ($context, $value) = @_;
    test::log($value);  # @light
};  # @step10

Given 'something to do', sub {
    Pending('later');  # @pending
};  # @step11
