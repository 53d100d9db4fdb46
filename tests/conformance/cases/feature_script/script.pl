use strict;
use warnings;

sub main {
    runFeatureFile(findFile('testdata', 'feature_script.feature'));  # @main
}
