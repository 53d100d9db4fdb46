#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <memory>

#include "shared/testdata/testdataset.h"

namespace Tamrix {

namespace {

QString escapedCSVField(QString text) {
    text.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + text + QLatin1Char('"');
}

bool writeTable(const TestDataSet& set, QFileDevice* file) {
    const auto write = [&](const TestDataRecord* record) {
        file->write(set.recordAsLine(record, set.getSep()).toUtf8());
        return file->error() == QFileDevice::NoError;
    };
    if (!write(set.header()))
        return false;
    for (int index = 0; index < set.count(); ++index) {
        if (!write(set.record(index)))
            return false;
    }
    return true;
}

}  // namespace

QString TestDataSet::recordAsLine(const TestDataRecord* record, char separator) const {
    // The first field is always there.
    const int count = record ? std::max(record->count(), 1) : 1;
    QString line = escapedCSVField(record ? record->valueAsString(0) : QString());
    for (int column = 1; column < count; ++column)
        line += QLatin1Char(separator) + escapedCSVField(record->valueAsString(column));
    const int width = m_header ? m_header->count() : 0;
    for (int column = count; column < width; ++column)
        line += QLatin1Char(separator);
    return line + QLatin1Char('\n');
}

bool TestDataSet::save(const QString& path) const {
    if (isReadOnly())
        return false;
    const QString target = path.isEmpty() ? dataName() : path;
    const QFileInfo info(target);
    // What is no file can't be replaced by a whole new one.
    if (info.exists() && !info.isFile()) {
        QFile device(target);
        return device.open(QIODevice::WriteOnly) && writeTable(*this, &device) && device.flush();
    }
    QSaveFile file(target);
    file.setDirectWriteFallback(true);
    return file.open(QIODevice::WriteOnly) && writeTable(*this, &file) && file.commit();
}

}  // namespace Tamrix
