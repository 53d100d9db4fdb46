#pragma once

#include <minizip/zip.h>

#include <QByteArray>
#include <QFile>
#include <QString>
#include <utility>
#include <vector>

namespace Tamrix::Test {

/// The names of the entries and what they hold.
using ZipEntries = std::vector<std::pair<QByteArray, QByteArray>>;

/// Writes a zip archive, its entries packed.
inline void writeArchive(const QString& path, const ZipEntries& entries) {
    const zipFile archive = zipOpen(QFile::encodeName(path).constData(), APPEND_STATUS_CREATE);
    for (const auto& [name, contents] : entries) {
        zipOpenNewFileInZip(archive, name.constData(), nullptr, nullptr, 0, nullptr, 0, nullptr,
                            Z_DEFLATED, Z_BEST_SPEED);
        zipWriteInFileInZip(archive, contents.constData(), static_cast<unsigned>(contents.size()));
        zipCloseFileInZip(archive);
    }
    zipClose(archive, nullptr);
}

}  // namespace Tamrix::Test
