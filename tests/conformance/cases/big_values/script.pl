use strict;
use warnings;

sub main {
    my @numbers = 0 .. 99_999;
    test::verify("@numbers" eq join(' ', 0 .. 99_999), 'a long list');  # @list
    my $text = 'x' x 1_000_000;
    test::compare(length $text, 1_000_000, 'a long text');  # @text
    test::verify($text eq 'x' x 1_000_000);  # @same
}
