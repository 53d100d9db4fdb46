use strict;
use warnings;

sub main {
    testSettings->throwOnFailure(1);
    eval { test::compare(1, 2, 'the first') };  # @first
    test::log('caught') if ref $@ && $@->isa('tamrix::VerificationError');  # @caught
    test::verify(0, 'the second');  # @second
    test::log('never');
}

sub cleanup {
    test::log('cleanup');  # @cleanup
}
