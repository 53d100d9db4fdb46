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

QString messageText(const QString& message, const QString& detail) {
    if (message.isEmpty() || detail.isEmpty())
        return message + detail;
    return message + QLatin1String(": ") + detail;
}

QString commentText(const ResultAdded& result) {
    const ResultTypeInfo* info = resultTypeInfo(result.type);
    if (result.comment.isEmpty() || !info || !info->isVerdict)
        return result.comment;
    return QStringLiteral("Comment: ") + result.comment;
}

QString describeResult(const ResultAdded& result) {
    QString first = resultTypeName(result.type);
    if (!result.message.isEmpty())
        first += QLatin1String(": ") + result.message;
    const QString position =
        result.callStack.empty() ? QString() : positionText(result.callStack.front());
    if (!position.isEmpty())
        first.prepend(position + QLatin1String(": "));

    QStringList lines{first};
    if (!result.detail.isEmpty())
        lines += result.detail;
    const QString comment = commentText(result);
    if (!comment.isEmpty())
        lines += comment;
    if (!result.explanation.isEmpty())
        lines += result.explanation;
    for (std::size_t i = 1; i < result.callStack.size(); ++i) {
        const QString caller = positionText(result.callStack[i]);
        if (!caller.isEmpty())
            lines += QStringLiteral("called from ") + caller;
    }
    return lines.join(QLatin1Char('\n'));
}

QString describeAction(const ActionEnded& action) {
    const QString position = positionText(action.position);
    const QString seconds = QString::number(action.milliseconds / 1000.0, 'f', 2);
    return (position.isEmpty() ? QString() : position + QLatin1String(": ")) +
           messageText(action.function, action.arguments) + QLatin1String(" (") + seconds +
           (action.hasFailed ? QStringLiteral(" s, failed)") : QStringLiteral(" s)"));
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
