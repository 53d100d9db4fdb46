#pragma once

#include <QImage>
#include <QSet>
#include <QString>
#include <QStringList>
#include <vector>

#include "base/outcome.h"

namespace Tamrix {

/// Keeps pictures of a screen as tiles, each of which is a PNG file named after its contents: what
/// two pictures share is stored once. Pictures that follow each other cost as much as differs.
/// One thread; several processes may store to the same folder.
class TileStore {
public:
    /// Of a tile, in pixels of the picture; those at its right and lower edge may be smaller.
    static constexpr int tileSize = 128;

    /// Which tile changed, and the name of its file without the suffix.
    struct Change {
        int index;
        QString name;

        bool operator==(const Change& other) const = default;
    };

    /// The folder is there.
    explicit TileStore(const QString& folder) : m_folder(folder) {}

    /// Stores the picture. Returns what differs from the last one, by the numbers of the tiles row
    /// by row from 0; all of them for the first and for one of another size.
    Outcome<std::vector<Change>> add(const QImage& picture);
    /// The names of all tiles of the last picture; empty without one.
    const QStringList& names() const { return m_names; }
    QSize size() const { return m_last.size(); }

    /// Gives the files that add() made to another folder, which has those of other stores; later
    /// ones go there, too.
    Outcome<> moveTo(const QString& folder);

private:
    Outcome<QString> store(const QRect& tile);

    QString m_folder;
    QImage m_last;
    QStringList m_names;
    /// Files that are known to be there.
    QSet<QString> m_stored;
};

}  // namespace Tamrix
