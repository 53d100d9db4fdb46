use strict;
use warnings;

sub main {
    test::pass('one');  # @one
    test::pass('two');  # @two
    test::fail('three');  # @three
    for my $category (qw(passes fails xpasses errors warnings logs tests)) {
        test::log("$category: " . test::resultCount($category));  # @count
    }
}
