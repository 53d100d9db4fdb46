def main
  records = testData.dataset('data_sets_people.tsv')
  records.each do |record|
    name = testData.field(record, 'Name')
    test.log("#{name} is #{record['Age']}") # @person
    test.compare(testData.field(record, 0), name) # @column
  end
  test.compare(testData.fieldNames(records[-1]), %w[Name Age]) # @names
  odd = testData.dataset('data_sets_odd.csv')
  test.compare([odd[0][1], odd[0]['twice']], %w[2 3]) # @twice
  %w[xls xlsx].each do |suffix|
    sheet = testData.dataset("data_sets_sheet.#{suffix}")
    test.compare([sheet.size, sheet[1]['name'], sheet[1][2]], [2, 'Müller', "two\nlines"]) # @sheet
  end
end
