#include "platform/testresult/journalreport.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <cerrno>

#include "base/filewriting.h"
#include "platform/testresult/journalentry.h"
#include "platform/testresult/journalpaths.h"
#include "platform/testresult/reporttarget.h"

namespace Tamrix {

namespace {

/// With each of the five texts of an entry no longer than this, its line stays below the limit,
/// since a code unit takes six bytes at most.
constexpr int longestText = 2 * 1024 * 1024;

QString shortened(const QString& text) {
    if (text.size() <= longestText)
        return text;
    const int kept = longestText - 100;
    return text.left(kept) + QStringLiteral("[... %1 characters left out]").arg(text.size() - kept);
}

}  // namespace

JournalReport::JournalReport(const QString& path) {
    m_path = prepareReportTarget(path, &m_error);
    if (!m_error.isEmpty())
        return;
    m_descriptor = ::open(QFile::encodeName(m_path).constData(),
                          O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666);
    struct stat status;
    if (m_descriptor < 0 || ::fstat(m_descriptor, &status) != 0) {
        fail(qt_error_string(errno));
        return;
    }
    m_folder = QFileInfo(m_path).absolutePath();
    m_isRegularFile = S_ISREG(status.st_mode);
    m_device = status.st_dev;
    m_inode = status.st_ino;
    write(Journal::headerLine(QDateTime::currentDateTime()));
}

JournalReport::~JournalReport() {
    close();
}

void JournalReport::add(const ReportEntry& entry) {
    if (m_descriptor < 0)
        return;
    if (m_isRegularFile && Journal::hasPathBelow(entry.event, m_folder))
        addMovable({entry.time, Journal::withRelativePath(entry.event, m_folder)});
    else
        addMovable(entry);
}

void JournalReport::addMovable(const ReportEntry& entry) {
    const QByteArray line = Journal::entryLine(entry);
    if (line.size() > Journal::longestLine)
        addLongEntry(entry);
    else
        write(line);
}

void JournalReport::finish() {
    close();
}

void JournalReport::addLongEntry(const ReportEntry& entry) {
    if (const auto* output = eventOf<OutputWritten>(entry)) {
        addLongOutput(entry.time, *output);
        return;
    }
    Journal::Fields fields = Journal::fieldsOf(entry);
    // What follows from the rest goes first.
    fields.explanation = shortened(fields.explanation);
    const QByteArray line = Journal::lineOf(fields);
    if (line.size() <= Journal::longestLine) {
        write(line);
        return;
    }
    for (QString* const text : {&fields.message, &fields.detail, &fields.extra, &fields.path})
        *text = shortened(*text);
    const std::size_t deepest = 1000;
    if (fields.callStack.size() > deepest)
        fields.callStack.resize(deepest);
    write(Journal::lineOf(fields));
}

void JournalReport::addLongOutput(const QDateTime& time, const OutputWritten& output) {
    const QString& text = output.text;
    int start = 0;
    while (start < text.size()) {
        int length = qMin(longestText, text.size() - start);
        // A surrogate pair stays in one piece.
        if (start + length < text.size() && text.at(start + length - 1).isHighSurrogate())
            --length;
        write(Journal::entryLine({time, OutputWritten{output.stream, text.mid(start, length)}}));
        start += length;
    }
}

void JournalReport::write(const QByteArray& line) {
    if (m_descriptor < 0)
        return;
    QString reason;
    if (!writeAll(m_descriptor, line, &reason))
        fail(reason);
    else if (hasVanished())
        fail(QStringLiteral("the file was removed or replaced; from now on nothing is recorded"));
}

bool JournalReport::hasVanished() const {
    if (!m_isRegularFile)
        return false;
    struct stat status;
    return ::stat(QFile::encodeName(m_path).constData(), &status) != 0 ||
           status.st_dev != m_device || status.st_ino != m_inode;
}

void JournalReport::fail(const QString& reason) {
    m_error = QStringLiteral("The journal '%1' could not be written: %2").arg(m_path, reason);
    close();
}

void JournalReport::close() {
    if (m_descriptor < 0)
        return;
    const int descriptor = m_descriptor;
    m_descriptor = -1;
    // Network file systems may tell only now that a write failed.
    if (::close(descriptor) != 0 && errno != EINTR && m_error.isEmpty())
        fail(qt_error_string(errno));
}

}  // namespace Tamrix
