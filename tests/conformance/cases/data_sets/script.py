def main():
    for record in testData.dataset("data_sets_people.tsv"):
        name = testData.field(record, "Name")
        test.log(name + " is " + testData.field(record, "Age"))  # @person
        test.compare(testData.field(record, 0), name)  # @column
    test.compare(testData.fieldNames(record), ["Name", "Age"])  # @names
    odd = testData.dataset("data_sets_odd.csv")
    test.compare([odd[0][1], odd[0]["twice"]], ["2", "3"])  # @twice
