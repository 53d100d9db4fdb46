#include "runner/trace/tilestore.h"

#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QImageWriter>
#include <QVector>
#include <cstring>

namespace Tamrix {

namespace {

constexpr int bytesPerPixel = 4;
/// As many hexadecimal digits of the hash make names that do not meet by chance.
constexpr int nameLength = 24;
/// Of 100: what takes more time saves little.
constexpr int pngCompression = 66;

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

/// With a table of its colours when there are few: such a file is smaller and sooner written.
QImage withColourTable(const QImage& tile) {
    constexpr int mostColours = 256;
    QImage indexed(tile.size(), QImage::Format_Indexed8);
    QVector<QRgb> table;
    QHash<QRgb, uchar> indexes;
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
    indexed.setColorTable(table);
    return indexed;
}

QString filePath(const QString& folder, const QString& name) {
    return QStringLiteral("%1/%2.png").arg(folder, name);
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

Outcome<std::vector<TileStore::Change>> TileStore::add(const QImage& picture) {
    const QImage before = m_last;
    // Unused bytes of pixels must not make differences.
    m_last = picture.convertToFormat(QImage::Format_RGB32);
    const bool isComparable = before.size() == m_last.size();
    if (!isComparable)
        m_names.clear();
    std::vector<Change> changes;
    const std::vector<QRect> tiles = tilesOf(m_last.size());
    for (int index = 0; index < static_cast<int>(tiles.size()); ++index) {
        const QRect& tile = tiles[static_cast<size_t>(index)];
        if (isComparable && hasSamePixels(before, m_last, tile))
            continue;
        const Outcome<QString> name = store(tile);
        if (!name) {
            // The next picture is then stored as a whole.
            m_last = QImage();
            m_names.clear();
            return fail(name.error());
        }
        if (isComparable)
            m_names[index] = *name;
        else
            m_names.append(*name);
        changes.push_back({index, *name});
    }
    return changes;
}

Outcome<QString> TileStore::store(const QRect& tile) {
    const QString name = nameOf(m_last, tile);
    if (m_stored.contains(name))
        return name;
    const QString path = filePath(m_folder, name);
    if (!QFile::exists(path)) {
        // A file of that name is whole, whatever becomes of this process.
        const QString part = QStringLiteral("%1.%2.part").arg(path, QString::number(::getpid()));
        QImageWriter writer(part, "png");
        writer.setCompression(pngCompression);
        if (!writer.write(withColourTable(m_last.copy(tile))))
            return fail(
                FailureKind::Failed,
                QStringLiteral("'%1' can't be written: %2").arg(path, writer.errorString()));
        if (::rename(QFile::encodeName(part).constData(), QFile::encodeName(path).constData()) !=
            0) {
            const QString reason = QString::fromLocal8Bit(std::strerror(errno));
            QFile::remove(part);
            return fail(FailureKind::Failed,
                        QStringLiteral("'%1' can't be written: %2").arg(path, reason));
        }
    }
    m_stored.insert(name);
    return name;
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
