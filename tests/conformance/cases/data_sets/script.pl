use strict;
use warnings;

sub main {
    my $record;
    for my $each (@{testData::dataset('data_sets_people.tsv')}) {
        $record = $each;
        my $name = testData::field($record, 'Name');
        test::log("$name is " . testData::field($record, 'Age'));  # @person
        test::compare(testData::field($record, 0), $name);  # @column
    }
    test::compare(testData::fieldNames($record), ['Name', 'Age']);  # @names
    my $odd = testData::dataset('data_sets_odd.csv');
    test::compare([$odd->[0][1], $odd->[0]{twice}], ['2', '3']);  # @twice
    for my $suffix (qw(xls xlsx)) {
        my $sheet = testData::dataset("data_sets_sheet.$suffix");
        test::compare([scalar @$sheet, $sheet->[1]{name}, $sheet->[1][2]], [2, 'Müller', "two\nlines"]);  # @sheet
    }
}
