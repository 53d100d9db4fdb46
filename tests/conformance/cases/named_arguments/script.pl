use strict;
use warnings;

sub main {
    test::compare(1, -value2 => 1, -comment => 'by name');  # @name
    test::log(-detail => 'the detail', -message => 'the message');  # @order
}
