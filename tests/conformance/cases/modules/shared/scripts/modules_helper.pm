package modules_helper;

use strict;
use warnings;

my @calls;

sub check {
    my $value = shift;
    push @calls, $value;
    test::compare($value, 7, 'in the module');  # @check
}

sub count { scalar @calls }

1;
