use strict;
use warnings;

sub twice { 2 * shift }

sub report {
    test::log('from the other file');  # @report
}
