use strict;
use warnings;

sub main {
    startApplication('widgets');
    my $window = waitForObject({type => 'Window'});
    test::verify($window == findObject("{type='Window'}"));  # @same
    test::verify(object::exists("{type='QTabWidget'}"));  # @exists
    test::verify(!object::exists({type => 'QTabWidget', objectName => 'other'}));  # @not
    test::compare(scalar @{findAllObjects("{type='QTabWidget'}")}, 1);  # @all
    test::compare(typeName($window), 'Window');  # @type
    test::compare(object::properties($window)->{windowTitle}, 'Targets');  # @properties
    test::verify(!defined object::parent($window));  # @parent
}
