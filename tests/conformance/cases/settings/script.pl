use strict;
use warnings;

sub main {
    testSettings->waitForObjectTimeout(1234);
    test::compare(testSettings->waitForObjectTimeout, 1234);  # @number
    testSettings->logScreenshotOnFail(0);
    test::verify(!testSettings->logScreenshotOnFail);  # @flag
    if (eval { testSettings->waitForObjectTimeOut(1); 1 }) {
        test::fail('a slip in the name was taken');
    } else {
        test::log('refused');  # @refused
    }
}
