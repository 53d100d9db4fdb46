#include "platform/testresult/resulttext.h"

#include <QStringList>

#include "platform/testresult/resulttypes.h"

namespace Tamrix {

namespace {

<<<<<<< HEAD
QString commentText(const ReportEntry& entry) {
    const ResultTypeInfo* info = resultTypeInfo(entry.type);
    if (entry.extra.isEmpty() || entry.type == TestResult::Skipped)
        return QString();
    return info && info->isVerdict ? QStringLiteral("Comment: ") + entry.extra : entry.extra;
=======
const QLatin1String screenshotBeginning(" (Screenshot in '");
const QLatin1String screenshotEnd("')");

/// Whether a code unit can't stand in a text by itself: half of a surrogate pair.
bool isLoneSurrogate(const QString& text, int index) {
    const QChar c = text.at(index);
    if (c.isHighSurrogate())
        return index + 1 >= text.size() || !text.at(index + 1).isLowSurrogate();
    return c.isLowSurrogate() && (index == 0 || !text.at(index - 1).isHighSurrogate());
}

bool isTerminalControl(const QString& text, int index) {
    const ushort unit = text.at(index).unicode();
    if (unit == '\t' || unit == '\n')
        return false;
    // Besides the C0 range, terminals obey the C1 range, whose 0x9b begins a sequence by itself.
    return unit < 0x20 || (unit >= 0x7f && unit <= 0x9f) || isLoneSurrogate(text, index);
}

bool isForbiddenInXml(const QString& text, int index) {
    const ushort unit = text.at(index).unicode();
    if (unit == '\t' || unit == '\n' || unit == '\r')
        return false;
    return unit < 0x20 || unit >= 0xfffe || isLoneSurrogate(text, index);
}

/// Replaces the code units for which `isBad` holds by \xNN or \uNNNN.
template <typename Predicate>
QString escaped(const QString& text, Predicate isBad) {
    int index = 0;
    while (index < text.size() && !isBad(text, index))
        ++index;
    if (index == text.size())
        return text;

    QString result = text.left(index);
    for (; index < text.size(); ++index) {
        const ushort unit = text.at(index).unicode();
        if (!isBad(text, index))
            result += text.at(index);
        else if (unit < 0x100)
            result += QStringLiteral("\\x%1").arg(unit, 2, 16, QLatin1Char('0'));
        else
            result += QStringLiteral("\\u%1").arg(unit, 4, 16, QLatin1Char('0'));
    }
    return result;
>>>>>>> htmlreport
}

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
    for (std::size_t i = 1; i < entry.callStack.size(); ++i) {
        const QString caller = positionText(entry.callStack[i]);
        if (!caller.isEmpty())
            lines += QStringLiteral("called from ") + caller;
    }
    return lines.join(QLatin1Char('\n'));
}

<<<<<<< HEAD
=======
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

QString escapedForTerminal(const QString& text) {
    return escaped(text, isTerminalControl);
}

QString escapedForXml(const QString& text) {
    return escaped(text, isForbiddenInXml);
}

>>>>>>> htmlreport
}  // namespace Tamrix
