package error_in_module_helper;

use strict;
use warnings;

sub call {
    my $function = shift;
    $function->();  # @module
}

1;
