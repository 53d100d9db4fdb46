#include "shared/testdata/testdataset.h"

#include <type_traits>

#include "shared/tsvparser/delimitedtext.h"
#include "shared/tsvparser/fields.h"

namespace Tamrix {

namespace {

int fieldCount(const DelimitedText& text, const TextLine& line) {
    if (line.separators > 0)
        return static_cast<int>(line.separators) + 1;
    // Without a separator there is one field, or none when the quotes hold nothing.
    const QString whole = line.length <= 2 ? text.text(line) : QString();
    return line.length == 0 || whole == QLatin1String("\"") || whole == QLatin1String("\"\"") ? 0
                                                                                              : 1;
}

}  // namespace

TestDataRecord::TestDataRecord(TestDataSet* set, int index, const TextLine& line)
    : m_set(set),
      m_index(index),
      m_lineBegin(line.begin),
      m_lineLength(line.length),
      m_lineFields(fieldCount(*set->text(), line)) {}

QVector<QString>& TestDataRecord::values() const {
    if (m_lineFields == 0)
        return m_values;
    m_values.reserve(m_lineFields);
    m_set->text()->visit([this](const auto* text, std::size_t) {
        using Unit = std::remove_cv_t<std::remove_pointer_t<decltype(text)>>;
        const Unit* const line = text + m_lineBegin;
        splitFields(
            line, line + m_lineLength, static_cast<Unit>(m_set->getSep()),
            [this](const Unit* begin, const Unit* end) { m_values.append(decoded(begin, end)); });
    });
    m_lineFields = 0;
    return m_values;
}

QString TestDataRecord::valueAsString(int column) const {
    return values().value(column);
}

QString TestDataRecord::valueAsString(const QString& field) const {
    return valueAsString(m_set->fieldIndex(field));
}

void TestDataRecord::setValue(int column, const QString& value) {
    if (column < 0)
        return;
    QVector<QString>& values = this->values();
    while (values.size() <= column)
        values.append(QString(QLatin1String("")));
    values[column] = value;
}

void TestDataRecord::removeField(int column) {
    if (column >= 0 && column < count())
        values().remove(column);
}

void TestDataRecord::insertField(int column) {
    if (column >= 0 && column < count())
        values().insert(column, QString(QLatin1String("")));
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
