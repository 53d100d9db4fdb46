#include "platform/testresult/journalreader.h"

#include <QFile>
#include <QFileInfo>
#include <optional>

#include "platform/testresult/journalentry.h"
#include "platform/testresult/journalpaths.h"
#include "platform/testresult/reportgenerator.h"

namespace Tamrix {

namespace {

/// What ended a line, or why it was not read to its end.
enum class LineEnd { LineFeed, EndOfFile, TooLong };

/// Splits what a device holds into lines. QIODevice::readLine() with a limit would allocate as much
/// as the limit for every line.
class LineSource {
public:
    explicit LineSource(QIODevice* device) : m_device(device) {}

    /// Reads the next line without its line feed; nothing at the end or after an error.
    std::optional<LineEnd> next(QByteArray* line) {
        line->clear();
        while (true) {
            const int end = m_block.indexOf('\n', m_position);
            const int length = (end < 0 ? m_block.size() : end) - m_position;
            if (line->size() + length > Journal::longestLine)
                return LineEnd::TooLong;
            line->append(m_block.constData() + m_position, length);
            m_position += length;
            if (end >= 0) {
                ++m_position;
                return LineEnd::LineFeed;
            }
            m_block = m_device->read(blockSize);
            m_position = 0;
            if (m_block.isEmpty())
                return line->isEmpty() ? std::nullopt : std::optional(LineEnd::EndOfFile);
        }
    }

private:
    static constexpr int blockSize = 64 * 1024;

    QIODevice* m_device;
    QByteArray m_block;
    int m_position = 0;
};

/// What a line of the journal gave.
struct LineReading {
    /// Why the line is no part of a journal; empty when it is one, be it cut.
    QString error = {};
    /// The run was killed while it wrote the line.
    bool isCut = false;
    std::optional<ReportEntry> entry = {};
};

/// The beginning of an object is never an object itself, so that a line without an end that is one
/// lacks nothing but the line feed.
bool isCutLine(LineEnd end, bool isJson) {
    return end == LineEnd::EndOfFile && !isJson;
}

LineReading tooLongLine() {
    return {.error = QStringLiteral("the line is longer than %1 bytes").arg(Journal::longestLine)};
}

LineReading readHeader(const QByteArray& line, LineEnd end) {
    bool isJson = false;
    LineReading reading;
    reading.error = Journal::checkHeader(line, &isJson);
    reading.isCut = isCutLine(end, isJson);
    const QByteArray beginning = Journal::beginning;
    if (reading.isCut && line.left(beginning.size()) == beginning.left(line.size()))
        reading.error.clear();
    return reading;
}

LineReading readEntry(const QByteArray& line, LineEnd end) {
    bool isJson = false;
    ReportEntry entry;
    const QString error = Journal::parseEntry(line, &entry, &isJson);
    if (isCutLine(end, isJson))
        return {.isCut = true};
    if (!error.isEmpty())
        return {.error = error};
    return {.entry = std::move(entry)};
}

}  // namespace

bool JournalReader::replay(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_isCut = false;
        m_error =
            QStringLiteral("The journal '%1' can't be read: %2").arg(path, file.errorString());
        return false;
    }
    m_folder = QFileInfo(path).absolutePath();
    const bool isRead = replay(&file, path);
    m_folder.clear();
    if (!isRead)
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
    int number = 0;
    while (const std::optional<LineEnd> end = source.next(&line)) {
        ++number;
        const LineReading reading = *end == LineEnd::TooLong ? tooLongLine()
                                    : number == 1            ? readHeader(line, *end)
                                                             : readEntry(line, *end);
        m_isCut = reading.isCut;
        if (!reading.error.isEmpty()) {
            m_error = QStringLiteral("%1:%2: %3").arg(name, QString::number(number), reading.error);
            return false;
        }
        if (!reading.entry)
            continue;
        if (!m_folder.isEmpty() && Journal::hasRelativePath(reading.entry->event)) {
            m_generator->add(
                {reading.entry->time, Journal::withAbsolutePath(reading.entry->event, m_folder)});
        } else {
            m_generator->add(*reading.entry);
        }
    }
    // Killed before the header was written.
    m_isCut = m_isCut || number == 0;
    return true;
}

}  // namespace Tamrix
