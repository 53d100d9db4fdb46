#include "shared/testdata/excelarchive.h"

#include <minizip/unzip.h>

#include <QString>
#include <algorithm>
#include <stdexcept>
#include <string>

namespace Tamrix {

namespace {

constexpr int caseSensitive = 1;

[[noreturn]] void fail(int error, const char* name) {
    const auto withName = [name](const char* text) {
        return QString(QLatin1String(text)).arg(QString::fromUtf8(name)).toStdString();
    };
    switch (error) {
        case UNZ_CRCERROR:
            throw std::runtime_error("crc check failed! ");
        case UNZ_BADZIPFILE:
            throw std::runtime_error("invalid zip archive file. ");
        case UNZ_PARAMERROR:
            throw std::runtime_error(
                withName("parameter error when extracting '%1' from archive! "));
        default:
            throw std::runtime_error(withName("unknown error when extracting data '%1'."));
    }
}

void require(int error, const char* name) {
    if (error != UNZ_OK)
        fail(error, name);
}

/// Room is made as data comes, so that a size that is only claimed costs nothing.
QByteArray readCurrentFile(void* archive, int size, const char* name) {
    constexpr int firstStep = 64 << 10;
    // What was really read counts, not what the archive says.
    const auto packedBegin = static_cast<qint64>(unzGetCurrentFileZStreamPos64(archive));
    QByteArray bytes;
    while (bytes.size() < size) {
        const int done = bytes.size();
        bytes.resize(std::min(size, done + std::max(done, firstStep)));
        const int count = unzReadCurrentFile(archive, bytes.data() + done,
                                             static_cast<unsigned>(bytes.size() - done));
        if (count <= 0)
            fail(count < 0 ? count : UNZ_INTERNALERROR, name);
        bytes.resize(done + count);
        const auto packedEnd = static_cast<qint64>(unzGetCurrentFileZStreamPos64(archive));
        if (bytes.size() > freeEntrySize &&
            bytes.size() > (packedEnd - packedBegin) * maxPackedRatio)
            throw std::runtime_error(std::string(name) + " unpacks to more than " +
                                     std::to_string(maxPackedRatio) + " times its size");
    }
    return bytes;
}

}  // namespace

QByteArray extractFromZipArchive(void*& archive, const char* name) {
    const int located = unzLocateFile(archive, name, caseSensitive);
    if (located == UNZ_END_OF_LIST_OF_FILE)
        throw std::runtime_error(notInArchive);
    require(located, name);

    unz_file_info facts = {};
    require(unzGetCurrentFileInfo(archive, &facts, nullptr, 0, nullptr, 0, nullptr, 0), name);
    if (facts.uncompressed_size > maxEntrySize)
        throw std::runtime_error(std::string(name) + " is larger than " +
                                 std::to_string(maxEntrySize >> 20) + " MiB");
    require(unzOpenCurrentFile(archive), name);
    QByteArray bytes;
    try {
        bytes = readCurrentFile(archive, static_cast<int>(facts.uncompressed_size), name);
    } catch (...) {
        unzCloseCurrentFile(archive);
        throw;
    }
    // An entry that goes on behind its size has another check sum.
    require(unzCloseCurrentFile(archive), name);
    return bytes;
}

}  // namespace Tamrix
