#include "shared/testdata/testdataset.h"

namespace Tamrix {

QString TestDataRecord::valueAsString(int column) const {
    return m_values.value(column);
}

QString TestDataRecord::valueAsString(const QString& field) const {
    return valueAsString(m_set->fieldIndex(field));
}

void TestDataRecord::setValue(int column, const QString& value) {
    if (column < 0)
        return;
    while (m_values.size() <= column)
        m_values.append(QString(QLatin1String("")));
    m_values[column] = value;
}

void TestDataRecord::removeField(int column) {
    if (column >= 0 && column < m_values.size())
        m_values.remove(column);
}

void TestDataRecord::insertField(int column) {
    if (column >= 0 && column < m_values.size())
        m_values.insert(column, QString(QLatin1String("")));
}

TestDataSet::TestDataSet(const QString& dataName, char separator, bool readOnly)
    : m_dataName(dataName), m_separator(separator), m_readOnly(readOnly) {}

TestDataSet::~TestDataSet() = default;

TestDataRecord* TestDataSet::record(int index) const {
    return index >= 0 && index < count() ? m_records[index].get() : nullptr;
}

void TestDataSet::setHeader(TestDataRecord* header) {
    // The header that is set already may be given again, to bring the field names up to date.
    if (header != m_header.get())
        m_header.reset(header);
    m_columns.clear();
    if (!header)
        return;
    for (int column = 0; column < header->count(); ++column)
        m_columns.insert(header->valueAsString(column), column);
}

void TestDataSet::addRecord(TestDataRecord* record) {
    m_records.emplace_back(record);
}

void TestDataSet::insertRecord(TestDataRecord* record, int at) {
    std::unique_ptr<TestDataRecord> owned(record);
    if (at >= 0 && at < count())
        m_records.insert(m_records.begin() + at, std::move(owned));
}

void TestDataSet::removeRecord(int index) {
    if (index >= 0 && index < count())
        m_records.erase(m_records.begin() + index);
}

void TestDataSet::insertField(int column) {
    if (m_header)
        m_header->insertField(column);
    for (const auto& record : m_records)
        record->insertField(column);
}

void TestDataSet::removeField(int column) {
    if (m_header)
        m_header->removeField(column);
    for (const auto& record : m_records)
        record->removeField(column);
}

}  // namespace Tamrix
