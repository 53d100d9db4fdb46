#include "platform/testresult/journalreader.h"

#include <QFile>

#include "platform/testresult/journalentry.h"
#include "platform/testresult/reportgenerator.h"

namespace Tamrix {

namespace {

/// Takes a device apart into lines. QIODevice::readLine() with a limit would allocate as much as
/// the limit for every line.
class LineSource {
public:
    explicit LineSource(QIODevice* device) : m_device(device) {}

    /// The next line without its line feed; false at the end or after an error. `*isWhole` tells
    /// whether a line feed ended it, `*isTooLong` whether it passed the limit.
    bool next(QByteArray* line, bool* isWhole, bool* isTooLong) {
        line->clear();
        *isWhole = *isTooLong = false;
        while (true) {
            const int end = m_block.indexOf('\n', m_position);
            const int length = (end < 0 ? m_block.size() : end) - m_position;
            *isTooLong = line->size() + length > Journal::longestLine;
            if (*isTooLong)
                return true;
            line->append(m_block.constData() + m_position, length);
            m_position += length;
            if (end >= 0) {
                ++m_position;
                *isWhole = true;
                return true;
            }
            m_block = m_device->read(blockSize);
            m_position = 0;
            if (m_block.isEmpty())
                return !line->isEmpty();
        }
    }

private:
    static constexpr int blockSize = 64 * 1024;

    QIODevice* m_device;
    QByteArray m_block;
    int m_position = 0;
};

}  // namespace

bool JournalReader::replay(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_isCut = false;
        m_error =
            QStringLiteral("The journal '%1' can't be read: %2").arg(path, file.errorString());
        return false;
    }
    if (!replay(&file, path))
        return false;
    if (file.error() != QFileDevice::NoError) {
        m_error =
            QStringLiteral("The journal '%1' can't be read: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

bool JournalReader::replay(QIODevice* device, const QString& name) {
    m_isCut = false;
    m_error.clear();
    LineSource source(device);
    QByteArray line;
    bool isWhole = false;
    bool isTooLong = false;
    int number = 0;
    while (source.next(&line, &isWhole, &isTooLong)) {
        ++number;
        const QString error =
            isTooLong ? QStringLiteral("the line is longer than %1 bytes").arg(Journal::longestLine)
                      : readLine(line, number == 1, isWhole);
        if (!error.isEmpty()) {
            m_error = QStringLiteral("%1:%2: %3").arg(name, QString::number(number), error);
            return false;
        }
    }
    // Killed before the header was written.
    m_isCut = m_isCut || number == 0;
    return true;
}

QString JournalReader::readLine(const QByteArray& line, bool isFirst, bool isWhole) {
    ReportEntry entry;
    bool isJson = false;
    QString error =
        isFirst ? Journal::checkHeader(line, &isJson) : Journal::parseEntry(line, &entry, &isJson);
    // The beginning of an object is never an object itself, so that a line without an end that is
    // one lacks nothing but the line feed.
    m_isCut = !isWhole && !isJson;
    if (m_isCut) {
        const QByteArray beginning = Journal::beginning;
        const bool isJournal =
            !isFirst || line.left(beginning.size()) == beginning.left(line.size());
        return isJournal ? QString() : error;
    }
    if (error.isEmpty() && !isFirst)
        m_generator->add(entry);
    return error;
}

}  // namespace Tamrix
