#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QMap>
#include <QString>

namespace Tamrix {

/// The objects of applications that the page of an HTML report shows, each tree once.
class ObjectTrees {
public:
    /// The index in all() of the tree that `json` holds, as "tamrixrunner inspect --json" prints
    /// it, the same for the same path. -1 for what is no such text, and for one that is larger than
    /// what is left of the budget, in bytes.
    int indexOf(const QString& path, const QByteArray& json, qint64* budget);

    /// The trees: each a list of objects in their order, and each of these a list of depth,
    /// description and the name that finds it.
    const QJsonArray& all() const { return m_trees; }

private:
    QMap<QString, int> m_indexes;
    QJsonArray m_trees;
};

}  // namespace Tamrix
