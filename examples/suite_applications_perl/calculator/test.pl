# Clicks the buttons of a calculator and reads its display.

use strict;
use warnings;
use keys;

sub main {
    startApplication('calculator');
    my $display = waitForObject(':Display');
    test::vp('display.vp', 'as it starts');

    test::startSection('Sums');
    keys::press(qw(7 + 5 =));
    test::expect($display, {text => '12'}, -comment => '7 + 5');
    keys::press('Sqrt');
    test::expect($display, {'text*' => '3.4641*'}, -comment => 'its root');
    test::endSection();

    test::startSection('Memory');
    keys::press('MS');
    click("{type='Button' text='Clear All'}");
    test::expect($display, {text => '0'}, -comment => 'cleared');
    keys::press('MR');
    test::expect($display, {'text*' => '3.4641*'}, -comment => 'recalled');
    test::endSection();

    test::verify($display->readOnly, 'nobody types into the display');
}
