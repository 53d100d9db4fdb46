use strict;
use warnings;

use error_in_module_helper;

sub main {
    error_in_module_helper::call(\&fail);  # @main
}

sub fail {
    die 'called back';  # @fail
}
