#include "runner/trace/tilestore.h"

#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QImageWriter>
#include <QVector>
#include <algorithm>
#include <cstring>

namespace Tamrix {

namespace {

constexpr int bytesPerPixel = 4;
/// As many hexadecimal digits of the hash make names that do not meet by chance.
constexpr int nameLength = 24;
/// Of 100: what takes more time saves little.
constexpr int pngCompression = 66;
/// Of the edges of a tile: those that differ from its base are told alone as long as they are less.
constexpr double mostChangedEdges = 0.4;
constexpr QRgb transparent = 0;

bool hasSamePixels(const QImage& first, const QImage& second, const QRect& tile) {
    const size_t bytes = static_cast<size_t>(tile.width()) * bytesPerPixel;
    for (int y = tile.top(); y <= tile.bottom(); ++y) {
        const int offset = tile.left() * bytesPerPixel;
        if (std::memcmp(first.constScanLine(y) + offset, second.constScanLine(y) + offset, bytes) !=
            0)
            return false;
    }
    return true;
}

/// Of pictures of 32 bits a pixel, that with transparency another one.
QString nameOf(const QImage& picture, const QRect& tile) {
    QCryptographicHash hash(QCryptographicHash::Sha1);
    const int size[] = {tile.width(), tile.height()};
    hash.addData(reinterpret_cast<const char*>(size), sizeof size);
    for (int y = tile.top(); y <= tile.bottom(); ++y) {
        hash.addData(
            reinterpret_cast<const char*>(picture.constScanLine(y)) + tile.left() * bytesPerPixel,
            tile.width() * bytesPerPixel);
    }
    return QString::fromLatin1(hash.result().toHex().left(nameLength));
}

/// How many pixels are not like the one to their left: about what a compressed picture grows with.
int edgesIn(const QImage& tile) {
    int edges = 0;
    for (int y = 0; y < tile.height(); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(tile.constScanLine(y));
        for (int x = 1; x < tile.width(); ++x)
            edges += line[x] != line[x - 1] ? 1 : 0;
    }
    return edges;
}

/// A tile without the pixels that are as in another one.
QImage differences(const QImage& tile, const QImage& other) {
    QImage result = tile.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < tile.height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(result.scanLine(y));
        const auto* const otherLine = reinterpret_cast<const QRgb*>(other.constScanLine(y));
        for (int x = 0; x < tile.width(); ++x) {
            if (line[x] == otherLine[x])
                line[x] = transparent;
        }
    }
    return result;
}

/// With a table of its colours when there are few: such a file is smaller and sooner written.
QImage withColourTable(const QImage& tile) {
    constexpr int mostColours = 256;
    constexpr int mostGreysInTable = 64;
    QImage indexed(tile.size(), QImage::Format_Indexed8);
    QVector<QRgb> table;
    QHash<QRgb, uchar> indexes;
    if (tile.hasAlphaChannel()) {
        // A file tells of transparency up to the last colour that has it.
        table.append(transparent);
        indexes.insert(transparent, 0);
    }
    for (int y = 0; y < tile.height(); ++y) {
        const auto* const from = reinterpret_cast<const QRgb*>(tile.constScanLine(y));
        uchar* const to = indexed.scanLine(y);
        for (int x = 0; x < tile.width(); ++x) {
            // Most are like their neighbour.
            if (x > 0 && from[x] == from[x - 1]) {
                to[x] = to[x - 1];
                continue;
            }
            const auto known = indexes.constFind(from[x]);
            if (known != indexes.constEnd()) {
                to[x] = *known;
                continue;
            }
            if (table.size() == mostColours)
                return tile;
            to[x] = static_cast<uchar>(table.size());
            indexes.insert(from[x], to[x]);
            table.append(from[x]);
        }
    }
    // With many greys, as texts have them, the table would take a quarter of the file.
    const bool isGrey =
        !tile.hasAlphaChannel() && std::all_of(table.begin(), table.end(), [](QRgb colour) {
            return qRed(colour) == qGreen(colour) && qRed(colour) == qBlue(colour);
        });
    if (isGrey && table.size() > mostGreysInTable)
        return tile.convertToFormat(QImage::Format_Grayscale8);
    indexed.setColorTable(table);
    return indexed;
}

QString filePath(const QString& folder, const QString& name) {
    return QStringLiteral("%1/%2.png").arg(folder, name);
}

/// Between pictures of the same size and 32 bits a pixel.
void copyPixels(const QImage& from, const QRect& place, QImage* to) {
    const int offset = place.left() * bytesPerPixel;
    const size_t bytes = static_cast<size_t>(place.width()) * bytesPerPixel;
    for (int y = place.top(); y <= place.bottom(); ++y)
        std::memcpy(to->scanLine(y) + offset, from.constScanLine(y) + offset, bytes);
}

/// All tiles of a picture of this size, row by row.
std::vector<QRect> tilesOf(QSize size) {
    std::vector<QRect> tiles;
    for (int y = 0; y < size.height(); y += TileStore::tileSize) {
        for (int x = 0; x < size.width(); x += TileStore::tileSize)
            tiles.push_back(QRect(x, y, TileStore::tileSize, TileStore::tileSize) &
                            QRect(QPoint(), size));
    }
    return tiles;
}

}  // namespace

void TileStore::forgetPicture() {
    m_tiles.clear();
    m_last = QImage();
    m_bases = QImage();
    m_baseNames.clear();
}

Outcome<std::vector<TileStore::Change>> TileStore::add(const QImage& picture) {
    if (picture.size() != m_last.size())
        forgetPicture();
    const QImage before = m_last;
    // Unused bytes of pixels must not make differences.
    m_last = picture.convertToFormat(QImage::Format_RGB32);
    const bool isFirst = before.isNull();
    if (isFirst)
        m_bases = QImage(m_last.size(), QImage::Format_RGB32);
    std::vector<Change> changes;
    const std::vector<QRect> places = tilesOf(m_last.size());
    m_tiles.resize(places.size());
    m_baseNames.resize(places.size());
    for (int index = 0; index < static_cast<int>(places.size()); ++index) {
        const QRect& place = places[static_cast<size_t>(index)];
        if (!isFirst && hasSamePixels(before, m_last, place))
            continue;
        const Outcome<Tile> tile = store(index, place);
        if (!tile) {
            // The next picture is then stored as a whole.
            forgetPicture();
            return fail(tile.error());
        }
        m_tiles[static_cast<size_t>(index)] = *tile;
        if (tile->change.isEmpty()) {
            copyPixels(m_last, place, &m_bases);
            m_baseNames[static_cast<size_t>(index)] = tile->base;
        }
        changes.push_back({index, *tile});
    }
    return changes;
}

Outcome<Tile> TileStore::store(int index, const QRect& place) {
    // 1. A tile that was there before.
    const QString whole = nameOf(m_last, place);
    if (const auto known = m_known.constFind(whole); known != m_known.constEnd())
        return *known;
    // 2. What differs from the base, where that is less.
    Tile tile{whole, {}};
    QImage picture = m_last.copy(place);
    const bool isStored = QFile::exists(filePath(m_folder, whole));
    if (const QImage change = isStored ? QImage() : changeOf(index, place); !change.isNull()) {
        picture = change;
        tile = {m_baseNames[static_cast<size_t>(index)], nameOf(change, change.rect())};
    }
    // 3. The file, if no other picture has it.
    const QString& name = tile.change.isEmpty() ? tile.base : tile.change;
    if (const Outcome<> written = write(name, picture); !written)
        return fail(written.error());
    m_known.insert(whole, tile);
    return tile;
}

QImage TileStore::changeOf(int index, const QRect& place) const {
    if (m_baseNames[static_cast<size_t>(index)].isEmpty())
        return {};
    const QImage whole = m_last.copy(place);
    const QImage change = differences(whole, m_bases.copy(place));
    return edgesIn(change) < mostChangedEdges * edgesIn(whole) ? change : QImage();
}

Outcome<> TileStore::write(const QString& name, const QImage& picture) {
    const QString path = filePath(m_folder, name);
    if (m_stored.contains(name) || QFile::exists(path)) {
        m_stored.insert(name);
        return {};
    }
    // A file of that name is whole, whatever becomes of this process.
    const QString part = QStringLiteral("%1.%2.part").arg(path, QString::number(::getpid()));
    QImageWriter writer(part, "png");
    writer.setCompression(pngCompression);
    // Nobody prints it: without a size in meters the file is smaller.
    QImage small = withColourTable(picture);
    small.setDotsPerMeterX(0);
    small.setDotsPerMeterY(0);
    QString reason;
    if (!writer.write(small))
        reason = writer.errorString();
    else if (::rename(QFile::encodeName(part).constData(), QFile::encodeName(path).constData()) !=
             0)
        reason = QString::fromLocal8Bit(std::strerror(errno));
    if (reason.isEmpty()) {
        m_stored.insert(name);
        return {};
    }
    QFile::remove(part);
    return fail(FailureKind::Failed, QStringLiteral("'%1' can't be written: %2").arg(path, reason));
}

Outcome<> TileStore::moveTo(const QString& folder) {
    for (const QString& name : qAsConst(m_stored)) {
        const QString from = filePath(m_folder, name);
        const QString to = filePath(folder, name);
        if (::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0 &&
            !QFile::exists(to)) {
            return fail(FailureKind::Failed,
                        QStringLiteral("'%1' can't be written: %2")
                            .arg(to, QString::fromLocal8Bit(std::strerror(errno))));
        }
    }
    m_folder = folder;
    return {};
}

}  // namespace Tamrix
