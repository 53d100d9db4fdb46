# Types into a Qt Quick scene and clicks in it.

use strict;
use warnings;

sub main {
    startApplication('scene');
    fill("{name='who' window={type='QQuickWindow'}}", 'Ada');
    click("{name='greet'}");
    test::expect("{name='greeting'}", {text => 'Hello, Ada', type => 'QQuickText'});
}
