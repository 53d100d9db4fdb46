# The names of the calculator's objects. Scripts require them; add() writes new ones below.
package names;
use strict;
use utf8;

our $window = {type => 'Calculator'};
our $display = {type => 'QLineEdit', window => $window};

# Buttons

sub button { return {type => 'Button', text => $_[0], window => $window} }

our $equals_button = button('=');
our $clear_all_button = button('Clear All');
1;
