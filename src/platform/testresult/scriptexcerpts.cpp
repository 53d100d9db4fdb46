#include "platform/testresult/scriptexcerpts.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>

#include "base/textescape.h"
#include "base/wholetext.h"
#include "platform/testresult/resulttext.h"

namespace Tamrix {

namespace {

/// How many lines are shown before and behind a position.
constexpr int context = 4;
constexpr int longestLine = 400;
constexpr qint64 largestScript = 8 * 1024 * 1024;

}  // namespace

int ScriptExcerpts::indexOf(const LineInfo& position) {
    if (position.fileName().isEmpty() || position.lineNumber() < 1)
        return -1;
    const std::pair key(position.fileName(), position.lineNumber());
    const auto known = m_indexes.constFind(key);
    if (known != m_indexes.constEnd())
        return *known;
    const int index = int(m_excerpts.size());
    m_excerpts.push_back(excerpt(position));
    m_indexes.insert(key, index);
    return index;
}

QJsonObject ScriptExcerpts::excerpt(const LineInfo& position) {
    const Script& source = script(position.fileName());
    QString problem = source.problem;
    if (problem.isEmpty() && position.lineNumber() > source.lines.size()) {
        problem = QStringLiteral("The file '%1' has no line %2 any more.")
                      .arg(position.fileName(), QString::number(position.lineNumber()));
    }
    if (!problem.isEmpty())
        return {{QStringLiteral("problem"), escapedForTerminal(problem)}};

    const int first = qMax(1, position.lineNumber() - context);
    QJsonArray lines;
    for (const QString& line :
         source.lines.mid(first - 1, position.lineNumber() - first + 1 + context))
        lines.append(escapedForTerminal(line.left(longestLine)));
    QJsonObject object{{QStringLiteral("first"), first},
                       {QStringLiteral("line"), position.lineNumber()},
                       {QStringLiteral("lines"), lines}};
    if (!source.note.isEmpty())
        object.insert(QStringLiteral("note"), source.note);
    return object;
}

const ScriptExcerpts::Script& ScriptExcerpts::script(const QString& path) {
    const auto known = m_scripts.constFind(path);
    if (known != m_scripts.constEnd())
        return *known;

    Script script;
    QFile file(path);
    const QFileInfo info(path);
    if (path.contains(QChar(0)) || !info.exists())
        script.problem = QStringLiteral("The file '%1' is missing.").arg(path);
    else if (!info.isFile() || info.size() > largestScript)
        script.problem = QStringLiteral("The file '%1' is no script.").arg(path);
    else if (!file.open(QIODevice::ReadOnly))
        script.problem =
            QStringLiteral("The file '%1' can't be read: %2").arg(path, file.errorString());
    else {
        QString text = wholeUtf8(file.readAll());
        text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        script.lines = text.split(QLatin1Char('\n'));
        // Behind the last line feed there is no line.
        if (script.lines.constLast().isEmpty())
            script.lines.removeLast();
    }
    if (script.problem.isEmpty() && m_runStart.isValid() && info.lastModified() > m_runStart) {
        script.note = QStringLiteral(
            "The file was changed after the run had begun; its lines may have moved.");
    }
    return *m_scripts.insert(path, script);
}

}  // namespace Tamrix
