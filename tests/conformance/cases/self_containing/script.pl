use strict;
use warnings;

sub main {
    my $values = [1];
    push @$values, $values;
    eval { findObject({type => {inner => $values}}); 1 };
    my $map = {};
    $map->{inner} = $map;
    test::log('refused') unless eval { findObject($map); 1 };  # @refused
    test::pass('it goes on');  # @on
}
