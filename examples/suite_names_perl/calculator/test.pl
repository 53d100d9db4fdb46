# Finds its objects by names that are variables of a package.
use strict;
use warnings;
require 'names.pl';

sub keys_of {
    click(names::button($_)) for split ' ', shift;
}

sub main {
    startApplication('calculator');

    test::startSection('Names are variables');
    keys_of('7 + 5');
    click($names::equals_button);
    test::expect($names::display, {text => '12'});
    test::endSection();

    test::startSection('and texts, as in verification points and expressions');
    click(':clear_all_button');
    test::expect(':display', {text => '0'});
    click("{type='Button' text='1' window=':window'}");
    test::expect('$names::display', {text => '1'});
    test::endSection();

    test::startSection('What a name stands for, and the other way round');
    test::compare(objectMap::realName(':display'), "{type='QLineEdit' window={type='Calculator'}}");
    test::compare(objectMap::symbolicName($names::equals_button), ':equals_button');
    test::verify(scalar grep { $_ eq ':window' } @{objectMap::symbolicNames()});
    test::endSection();
}
