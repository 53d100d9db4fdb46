# Clicks on what a calculator shows, by its text alone.

use strict;
use warnings;

sub main {
    startApplication('calculator');
    my $window = waitForObject(':Calculator');
    test::ocrTextPresent('Backspace', {timeout => 20000}, $window);

    test::startSection('Keys');
    click(findOcrText($_, {}, $window)) for qw(7 8 Backspace 9);
    test::expect(':Display', {text => '79'});
    click(findOcrText('Clear All', {}, $window));
    test::expect(':Display', {text => '0'});
    test::endSection();

    test::ocrTextNotPresent('Save as', {}, $window);
    my @words = map { $_->{text} } @{getAllOcrText({}, $window)};
    test::log(@words . " words: @words");
}
