#pragma once

#include <QMap>
#include <QString>
#include <QVector>
#include <memory>
#include <vector>

#include "base/export.h"
#include "base/shared.h"

namespace Tamrix {

class DelimitedText;
class TestDataSet;
struct TextLine;

/// One row of a TestDataSet, owned by it. Columns are counted from 0. A row that was read from text
/// is parsed when its values are first wanted; like the set it is for one thread at a time.
class TAMRIX_EXPORT TestDataRecord {
public:
    /// A row without values. `index` is -1 for the header, else the row's number from 0; nothing
    /// renumbers it later.
    TestDataRecord(TestDataSet* set, int index) : m_set(set), m_index(index) {}

    /// A row of the values; rows may share them.
    TestDataRecord(TestDataSet* set, int index, const QVector<QString>& values)
        : m_set(set), m_values(values), m_index(index) {}
    /// The row of a line in the text of `set`.
    TestDataRecord(TestDataSet* set, int index, const TextLine& line);

    TestDataSet* dataSet() const { return m_set; }
    int index() const { return m_index; }
    /// The number of values.
    int count() const { return m_lineFields > 0 ? m_lineFields : m_values.size(); }

    /// The value; the null string for a column out of range or an unknown field.
    QString valueAsString(int column) const;
    QString valueAsString(const QString& field) const;

    /// Stores a value, first appending empty ones until the column exists; does nothing for a
    /// negative column.
    void setValue(int column, const QString& value);
    void addValue(const QString& value) { values().append(value); }
    /// Takes a column out; nothing when there is no such column.
    void removeField(int column);
    /// Inserts an empty value before an existing column; nothing when there is no such column.
    void insertField(int column);

private:
    /// The values, taken out of the line if that was not done yet.
    QVector<QString>& values() const;

    TestDataSet* m_set;
    mutable QVector<QString> m_values;
    int m_index;
    /// Where the values still lie in the set's text, and how many they are; 0 when they don't.
    quint32 m_lineBegin = 0;
    quint32 m_lineLength = 0;
    mutable int m_lineFields = 0;
};

/// A table of test data: a header row of field names and any number of records.
/// Held by SharedPtr; owns its records.
class TAMRIX_EXPORT TestDataSet : public Shared {
public:
    /// An empty table. `dataName` is the path of the file that it stands for.
    TestDataSet(const QString& dataName, char separator, bool readOnly);
    ~TestDataSet() override;

    QString dataName() const { return m_dataName; }
    bool isReadOnly() const { return m_readOnly; }
    char getSep() const { return m_separator; }
    /// Whether the whole file could be read. What is wrong else was told when it was found.
    bool isComplete() const { return m_isComplete; }
    void setIncomplete() { m_isComplete = false; }
    /// The number of records; the header doesn't count.
    int count() const { return static_cast<int>(m_records.size()); }
    /// The record, null when out of range.
    TestDataRecord* record(int index) const;
    /// Null until setHeader().
    TestDataRecord* header() const { return m_header.get(); }
    /// Takes the header over and makes its values the field names; of two equal names the later
    /// column wins. The present header may be given again to renew the field names.
    void setHeader(TestDataRecord* header);
    /// The column of a field, -1 when unknown.
    int fieldIndex(const QString& name) const { return m_columns.value(name, -1); }

    /// Appends a record and takes it over.
    void addRecord(TestDataRecord* record);
    /// Takes a record over and inserts it before record `at`. It is deleted, and nothing changes,
    /// unless `at` is an existing record: this can't append.
    void insertRecord(TestDataRecord* record, int at);
    /// Deletes a record; the later ones keep their index. Nothing when out of range.
    void removeRecord(int index);
    /// Inserts or removes a column in the header and every record. The columns of fieldIndex() stay
    /// as they were until the next setHeader().
    void insertField(int column);
    void removeField(int column);

    /// A row as save() writes it, with its newline: each value in quotes, and separators alone for
    /// the values that it has fewer than the header. Null stands for a row without values.
    QString recordAsLine(const TestDataRecord* record, char separator) const;

    /// Writes the table as text, every value in quotes, to `path`, or to dataName() when `path` is
    /// empty. False for a read-only table, which writes nothing, and when writing failed.
    bool save(const QString& path) const;

    /// Reads the table of a file; the suffix chooses the reader, "xls" and "xlsx" their first
    /// sheet. Of other files the separator is found out by looking; null if that fails, unless the
    /// suffix is "tsv" or "csv". A file that can't be read gives a warning, and an empty table or
    /// null. The caller owns the result and puts it into a SharedPtr at once.
    static TestDataSet* createTestDataSet(const QString& path);
    /// Reads a sheet of a spreadsheet, the first one if `sheet` is empty; null unless the suffix is
    /// "xls" or "xlsx". The caller owns the result as above.
    static TestDataSet* createTestDataSetExcel(const QString& path, const QString& sheet);

    /// The text that rows are taken from when they are wanted, null for a table made otherwise.
    const DelimitedText* text() const { return m_text.get(); }

protected:
    void setText(std::shared_ptr<const DelimitedText> text) { m_text = std::move(text); }

private:
    QString m_dataName;
    std::shared_ptr<const DelimitedText> m_text;
    std::vector<std::unique_ptr<TestDataRecord>> m_records;
    std::unique_ptr<TestDataRecord> m_header;
    QMap<QString, int> m_columns;
    char m_separator;
    bool m_readOnly;
    bool m_isComplete = true;
};

}  // namespace Tamrix
