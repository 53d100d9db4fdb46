use strict;
use warnings;

sub main {
    startApplication('widgets');
    eval { waitForObject("{type='QPushButton' text='No such'}", 100) };
    test::log('caught') if ref $@ && $@->isa('tamrix::LookupError');  # @caught
    waitForObject("{type='QPushButton' text='No such'}", 100);  # @uncaught
}
