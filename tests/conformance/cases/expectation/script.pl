use strict;
use warnings;

sub main {
    startApplication('widgets');
    test::expect("{type='Window'}", {windowTitle => 'Targets', visible => !!1});  # @holds
    test::expect("{type='Window'}", {'windowTitle*' => 'Tar*'}, -comment => 'with a wildcard');  # @comment
}
