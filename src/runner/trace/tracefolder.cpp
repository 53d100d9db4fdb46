#include "runner/trace/tracefolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/filewriting.h"

// Outside of any namespace, as the macro wants it.
static void makePageAvailable() {
    Q_INIT_RESOURCE(trace);
}

namespace Tamrix {

namespace {

/// In digits, of a case.
constexpr int longestNumber = 10;

constexpr const char* pageFiles[] = {"index.html", "trace.js", "trace.css"};

Failure notWritten(const QString& path, const QString& reason) {
    return Failure{FailureKind::Failed,
                   QStringLiteral("'%1' can't be written: %2").arg(path, reason)};
}

QString systemError() {
    return QString::fromLocal8Bit(std::strerror(errno));
}

/// Removes what createTraceFolder() and the cases made.
Outcome<> removeTrace(QDir folder) {
    const QStringList entries =
        folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    if (entries.isEmpty())
        return {};
    if (!entries.contains(QLatin1String(pageFiles[1])))
        return fail(FailureKind::BadArgument,
                    QStringLiteral("'%1' is no trace and holds files: it is not replaced")
                        .arg(folder.path()));
    if (!folder.removeRecursively())
        return fail(FailureKind::Failed,
                    QStringLiteral("the trace '%1' can't be removed").arg(folder.path()));
    return {};
}

/// Counts in a file, also while other processes do.
Outcome<int> nextCaseNumber(const QString& path) {
    const int file =
        ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (file < 0)
        return fail(notWritten(path, systemError()));
    ::flock(file, LOCK_EX);
    char last[longestNumber + 1] = {};
    const ssize_t length = ::pread(file, last, longestNumber, 0);
    const int number = QByteArray(last, static_cast<int>(std::max<ssize_t>(length, 0))).toInt() + 1;
    const QByteArray text = QByteArray::number(number);
    const bool isWritten = ::pwrite(file, text.constData(), static_cast<size_t>(text.size()), 0) ==
                           static_cast<ssize_t>(text.size());
    const QString reason = isWritten ? QString() : systemError();
    ::close(file);
    return isWritten ? Outcome<int>(number) : fail(notWritten(path, reason));
}

}  // namespace

Outcome<> createTraceFolder(const QString& folder) {
    makePageAvailable();
    const QDir directory(folder);
    if (const Outcome<> removed = removeTrace(directory); !removed)
        return removed;
    const QString tiles = directory.filePath(QStringLiteral("tiles"));
    if (!QDir().mkpath(tiles))
        return fail(FailureKind::Failed,
                    QStringLiteral("the folder '%1' can't be made").arg(tiles));
    for (const char* const name : pageFiles) {
        QFile source(QStringLiteral(":/tamrix/trace/") + QLatin1String(name));
        QFile target(directory.filePath(QLatin1String(name)));
        QString error;
        if (!source.open(QIODevice::ReadOnly))
            return fail(FailureKind::Failed, source.errorString());
        if (!target.open(QIODevice::WriteOnly))
            return fail(notWritten(target.fileName(), target.errorString()));
        if (!writeAll(&target, source.readAll(), &error))
            return fail(notWritten(target.fileName(), error));
    }
    // A page without it would tell of a missing file.
    return appendCall(directory.filePath(QStringLiteral("cases.js")), "traceBegins", "{}");
}

Outcome<QString> createCaseFolder(const QString& folder) {
    const QDir directory(folder);
    const Outcome<int> number = nextCaseNumber(directory.filePath(QStringLiteral("cases.count")));
    if (!number)
        return fail(number.error());
    const QString name = QStringLiteral("case-%1").arg(*number, 4, 10, QLatin1Char('0'));
    if (::mkdir(QFile::encodeName(directory.filePath(name)).constData(), 0777) == 0)
        return name;
    return fail(FailureKind::Failed, QStringLiteral("the folder '%1' can't be made: %2")
                                         .arg(directory.filePath(name), systemError()));
}

Outcome<> appendCall(const QString& path, const char* function, const QByteArray& json) {
    const QByteArray line = QByteArray(function) + '(' + json + ");\n";
    const int file = ::open(QFile::encodeName(path).constData(),
                            O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (file < 0)
        return fail(notWritten(path, systemError()));
    // Of the list of cases, several processes are authors.
    ::flock(file, LOCK_EX);
    const off_t end = ::lseek(file, 0, SEEK_END);
    const ssize_t written = ::write(file, line.constData(), static_cast<size_t>(line.size()));
    QString reason;
    if (written != line.size()) {
        reason = written < 0 ? systemError() : QStringLiteral("the disk is full");
        // Half a line would take the whole file from the page.
        if (written > 0 && ::ftruncate(file, end) != 0)
            reason += QStringLiteral(", and a part of a line stays");
    }
    ::close(file);
    return reason.isEmpty() ? Outcome<>() : Outcome<>(fail(notWritten(path, reason)));
}

}  // namespace Tamrix
