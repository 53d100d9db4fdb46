#include "runner/debugging/sourceview.h"

#include <QFile>

#include "base/textescape.h"

namespace Tamrix {

namespace {

constexpr int linesAround = 2;
/// In characters: longer lines are cut.
constexpr int maximalLength = 500;
/// In bytes: what is behind that counts as a line of its own.
constexpr qint64 maximalLine = 1 << 20;

QString shownLine(QByteArray bytes) {
    while (bytes.endsWith('\n') || bytes.endsWith('\r'))
        bytes.chop(1);
    const QString text = escapedForTerminal(QString::fromUtf8(bytes));
    return text.size() > maximalLength ? text.left(maximalLength) + QChar(0x2026) : text;
}

}  // namespace

QString sourceAround(const ScriptPosition& position) {
    QFile file(position.file);
    if (position.file.isEmpty() || !file.open(QIODevice::ReadOnly))
        return {};
    const int last = position.line + linesAround;
    const int width = QString::number(last).size();
    QString text;
    bool hasLine = false;
    for (int line = 1; line <= last && !file.atEnd(); ++line) {
        const QByteArray bytes = file.readLine(maximalLine);
        if (line < position.line - linesAround)
            continue;
        const bool isCurrent = line == position.line;
        hasLine = hasLine || isCurrent;
        // One argument at a time could find a place in the source's text.
        text += (isCurrent ? QLatin1String("> ") : QLatin1String("  ")) +
                QString::number(line).rightJustified(width) + QLatin1String("  ") +
                shownLine(bytes) + QLatin1Char('\n');
    }
    return hasLine ? text : QString();
}

}  // namespace Tamrix
