#pragma once

#include <QHash>
#include <QImage>
#include <QSet>
#include <QString>
#include <vector>

#include "base/outcome.h"

namespace Tamrix {

/// A tile of a picture: the names of its files without the suffix. Where little differs from a tile
/// that was in its place before, `base` is that one, and `change`, which is transparent where
/// nothing differs, lies on it; else `change` is empty.
struct Tile {
    QString base;
    QString change;

    bool operator==(const Tile& other) const = default;
};

/// Keeps pictures of a screen as tiles, each of which is a PNG file named after its contents: what
/// two pictures share is stored once. Pictures that follow each other cost as much as differs.
/// One thread; several processes may store to the same folder.
class TileStore {
public:
    /// Of a tile, in pixels of the picture; those at its right and lower edge may be smaller.
    static constexpr int tileSize = 128;

    /// Which tile changed, and what it is now.
    struct Change {
        int index;
        Tile tile;
    };

    /// The folder is there.
    explicit TileStore(const QString& folder) : m_folder(folder) {}

    /// Stores the picture. Returns what differs from the last one, by the numbers of the tiles row
    /// by row from 0; all of them for the first and for one of another size.
    Outcome<std::vector<Change>> add(const QImage& picture);
    /// All tiles of the last picture; empty without one.
    const std::vector<Tile>& tiles() const { return m_tiles; }
    QSize size() const { return m_last.size(); }

    /// Gives the files that add() made to another folder, which has those of other stores; later
    /// ones go there, too.
    Outcome<> moveTo(const QString& folder);

private:
    void forgetPicture();
    /// What lies on the base of the tile at `index`; null when the whole tile costs less.
    QImage changeOf(int index, const QRect& place) const;
    Outcome<Tile> store(int index, const QRect& place);
    Outcome<> write(const QString& name, const QImage& picture);

    QString m_folder;
    QImage m_last;
    std::vector<Tile> m_tiles;
    /// What changes may lie on: of each place the last tile without a change, and its name.
    QImage m_bases;
    std::vector<QString> m_baseNames;
    /// Tiles by the names of their whole contents.
    QHash<QString, Tile> m_known;
    /// Files that are known to be there.
    QSet<QString> m_stored;
};

}  // namespace Tamrix
