"""The same table in every format gives the same records."""

# Further formats of the table go here.
# The spreadsheets were written by Spreadsheet::WriteExcel and Excel::Writer::XLSX.
TABLES = ["people.tsv", "people.csv", "people.xls", "people.xlsx"]

FIELDS = ["name", "age", "quote"]
PEOPLE = [["Ada, Countess", "36", 'said "hi"'], ["Müller", "50", "two\nlines"]]


def main():
    for name in TABLES:
        test.startSection(name)
        table = testData.dataset(name)
        test.compare(len(table), 2)
        rows = []
        for record in table:
            test.compare(testData.fieldNames(record), FIELDS)
            rows.append([testData.field(record, field) for field in FIELDS])
            test.compare([record[field] for field in FIELDS], rows[-1])
            test.compare(testData.field(record, 1), record["age"])
        test.compare(rows, PEOPLE)
        test.compare(table[1]["name"], "Müller")
        test.endSection()

    for function, text in [
        (lambda: testData.field(table[0], -1), "Invalid field index -1"),
        (lambda: testData.field(table[0], "none"), "Invalid field: none"),
        (lambda: testData.field(table[0], 1.0), "Field argument must be of a string or a number"),
        (lambda: testData.dataset("none.csv"), "File 'none.csv' couldn't be found."),
    ]:
        try:
            function()
        except RuntimeError as error:
            test.compare(str(error), text)
        else:
            test.fail("nothing was raised", text)
