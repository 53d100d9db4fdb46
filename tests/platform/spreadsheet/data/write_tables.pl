#!/usr/bin/perl
# Writes the same workbook with two libraries: tables-perl.xls and tables-perl.xlsx.
use strict;
use warnings;
use utf8;
use Spreadsheet::WriteExcel;
use Excel::Writer::XLSX;

for my $book (Spreadsheet::WriteExcel->new('tables-perl.xls'),
              Excel::Writer::XLSX->new('tables-perl.xlsx')) {
    my $bold = $book->add_format(bold => 1);
    my $date = $book->add_format(num_format => 'yyyy-mm-dd');

    my $people = $book->add_worksheet('People');
    $people->write_row(0, 0, ['name', 'age', 'score', 'note']);
    $people->write_row(1, 0, ['Ada', 36, 1.5, 'first & last']);
    $people->write_row(2, 0, ["J\x{fc}rgen", -7, 1234567, "\x{41f}\x{440}\x{438}\x{432}\x{435}\x{442}"]);
    $people->write_row(3, 0, ['', 1e10, 0.1, '  spaces  ']);

    my $offset = $book->add_worksheet("\x{411}lad 2");
    $offset->write(2, 2, 'key');
    $offset->write(2, 3, 'value');
    $offset->write(3, 2, 'day');
    $offset->write_number(3, 3, 44197.5, $date);
    $offset->write(4, 2, 'rich');
    $offset->write_rich_string(4, 3, 'pl', $bold, 'ain') if $offset->can('write_rich_string');
    $offset->write_string(4, 3, 'plain') unless $offset->can('write_rich_string');
    $offset->write(5, 2, 'sum');
    $offset->write_formula(5, 3, '=1+2', undef, 3);
    $offset->write_blank(6, 2, $bold);
    $offset->write(7, 2, 'behind the table');

    # Enough text to fill more than one record, in both widths.
    my $texts = $book->add_worksheet('Texts');
    $texts->write(0, 0, 'text');
    for my $row (1 .. 60) {
        my $letter = $row % 2 ? 'x' : "\x{436}";
        $texts->write_string($row, 0, "$row:" . $letter x (200 + $row));
    }
    $book->close();
}
