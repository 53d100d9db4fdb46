#include "platform/testresult/resulttext.h"

#include <QStringList>

#include "platform/testresult/resulttypes.h"

namespace Tamrix {

namespace {

const QLatin1String screenshotBeginning(" (Screenshot in '");
const QLatin1String screenshotEnd("')");

}  // namespace

QString positionText(const LineInfo& position) {
    if (position.fileName().isEmpty() || position.lineNumber() < 1)
        return position.fileName();
    return position.fileName() + QLatin1Char(':') + QString::number(position.lineNumber());
}

QString messageText(const ReportEntry& entry) {
    if (entry.message.isEmpty() || entry.detail.isEmpty())
        return entry.message + entry.detail;
    return entry.message + QLatin1String(": ") + entry.detail;
}

QString commentText(const ReportEntry& entry) {
    const ResultTypeInfo* info = resultTypeInfo(entry.type);
    if (entry.extra.isEmpty() || entry.type == TestResult::Skipped)
        return QString();
    return info && info->isVerdict ? QStringLiteral("Comment: ") + entry.extra : entry.extra;
}

QString describeResult(const ReportEntry& entry) {
    QString first = resultTypeName(entry.type);
    if (!entry.message.isEmpty())
        first += QLatin1String(": ") + entry.message;
    const QString position =
        entry.callStack.empty() ? QString() : positionText(entry.callStack.front());
    if (!position.isEmpty())
        first.prepend(position + QLatin1String(": "));

    QStringList lines{first};
    if (!entry.detail.isEmpty())
        lines += entry.detail;
    const QString comment = commentText(entry);
    if (!comment.isEmpty())
        lines += comment;
    if (!entry.explanation.isEmpty())
        lines += entry.explanation;
    for (std::size_t i = 1; i < entry.callStack.size(); ++i) {
        const QString caller = positionText(entry.callStack[i]);
        if (!caller.isEmpty())
            lines += QStringLiteral("called from ") + caller;
    }
    return lines.join(QLatin1Char('\n'));
}

QString describeAction(const ReportEntry& entry) {
    const QString position =
        entry.callStack.empty() ? QString() : positionText(entry.callStack.front());
    const QString seconds = QString::number(entry.value / 1000.0, 'f', 2);
    const bool hasFailed = entry.extra == QLatin1String("failed");
    return (position.isEmpty() ? QString() : position + QLatin1String(": ")) + messageText(entry) +
           QLatin1String(" (") + seconds +
           (hasFailed ? QStringLiteral(" s, failed)") : QStringLiteral(" s)"));
}

QString screenshotNote(const QString& path) {
    return screenshotBeginning + path + screenshotEnd;
}

QString takeScreenshotNote(QString* message) {
    const int begin = message->lastIndexOf(screenshotBeginning);
    if (begin < 0 || !message->endsWith(screenshotEnd))
        return QString();
    const int pathBegin = begin + screenshotBeginning.size();
    const int length = message->size() - screenshotEnd.size() - pathBegin;
    const QString path = message->mid(pathBegin, qMax(0, length));
    if (!path.isEmpty())
        message->truncate(begin);
    return path;
}

}  // namespace Tamrix
