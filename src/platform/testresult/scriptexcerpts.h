#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>
#include <utility>
#include <vector>

#include "platform/testresult/lineinfo.h"

namespace Tamrix {

/// The lines around positions in scripts, read from the files as they are now.
class ScriptExcerpts {
public:
    /// A file that was changed after `runStart` gets a note that its lines may have moved.
    explicit ScriptExcerpts(const QDateTime& runStart) : m_runStart(runStart) {}

    /// The index of a position's excerpt in all(), the same for the same position; -1 for a
    /// position without a line.
    int indexOf(const LineInfo& position);

    /// The excerpts as objects: "first" (the number of the first line), "line" (the position's),
    /// "lines", and "note" where there is something to be told; or "problem" alone when there is
    /// nothing to be shown.
    const std::vector<QJsonObject>& all() const { return m_excerpts; }

private:
    struct Script {
        QStringList lines;
        QString problem;
        QString note;
    };

    const Script& script(const QString& path);
    QJsonObject excerpt(const LineInfo& position);

    QDateTime m_runStart;
    QMap<QString, Script> m_scripts;
    QMap<std::pair<QString, int>, int> m_indexes;
    std::vector<QJsonObject> m_excerpts;
};

}  // namespace Tamrix
