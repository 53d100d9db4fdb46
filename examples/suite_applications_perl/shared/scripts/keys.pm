package keys;

use strict;
use warnings;

# Clicks keys of the calculator, one after the other.
sub press {
    main::click({type => 'Button', text => $_, window => ':Calculator'}) for @_;
}

1;
