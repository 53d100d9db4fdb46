use strict;
use warnings;
use utf8;

sub main {
    print "first\n";
    test::log('second');  # @second
    print "third\n";
    print "fourth\n";
    print STDERR "fifth\n";
    print 'without an end of line';
    test::log('sixth');  # @sixth
    print "ä€😀\n";
}
