# Fills in a dialog that a menu opens, and looks at the table that it fills.

use strict;
use warnings;

sub add {
    my ($name, $address) = @_;
    selectItem("{type='QMenuBar'}", 'Tools.Add Entry\.\.\.');
    fill("{type='QLineEdit' window=':AddContact'}", $name);
    fill("{type='QTextEdit' window=':AddContact'}", $address);
    click("{type='QPushButton' text='OK' window=':AddContact'}");
}

sub main {
    startApplication('addressbook');

    add('Ada', "12 St James's Square, London");
    add('Grace', 'Arlington');

    test::startSection('The tables hold what is expected');
    selectItem("{type='QTabBar'}", 'GHI');
    test::vp('grace.vp');
    test::endSection();

    test::startSection('The tab ABC has Ada alone');
    selectItem("{type='QTabBar'}", 'ABC');
    my $table = waitForObject("{type='QTableView' visible='true'}");
    test::compare(waitForObjectItem($table, 0, 0)->text, 'Ada');
    test::compare(waitForObjectItem($table, 0, 1)->text, "12 St James's Square, London");
    test::verify(!object::exists("{text='Grace' container={type='QTableView' visible='true'}}"));
    test::endSection();

    test::startSection('A selected entry can be removed');
    my $remove = "{type='QAction' text='Remove Entry'}";
    test::expect($remove, {enabled => !!0}, -comment => 'nothing is selected yet');
    selectItem($table, 'Ada');
    test::expect($remove, {enabled => !!1}, -comment => 'Ada is selected');
    selectItem("{type='QMenuBar'}", 'Tools.Remove Entry');
    test::verify(waitFor(sub { !object::exists("{text='Ada'}") }, 5000), 'Ada is gone');
    test::endSection();
}
