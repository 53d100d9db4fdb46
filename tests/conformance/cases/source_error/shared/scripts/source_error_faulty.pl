use strict;
use warnings;

die 'in the file';
