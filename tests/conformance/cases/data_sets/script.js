function main() {
    let last;
    for (const record of testData.dataset("data_sets_people.tsv")) {
        const name = testData.field(record, "Name");
        test.log(`${name} is ${record.Age}`);  // @person
        test.compare(testData.field(record, 0), name);  // @column
        last = record;
    }
    test.compare(testData.fieldNames(last), ["Name", "Age"]);  // @names
    const odd = testData.dataset("data_sets_odd.csv");
    test.compare([odd[0][1], odd[0].twice], ["2", "3"]);  // @twice
    for (const suffix of ["xls", "xlsx"]) {
        const sheet = testData.dataset(`data_sets_sheet.${suffix}`);
        test.compare([sheet.length, sheet[1].name, sheet[1][2]], [2, "Müller", "two\nlines"]);  // @sheet
    }
}
