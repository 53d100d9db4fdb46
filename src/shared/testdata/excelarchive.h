#pragma once

#include <QByteArray>

#include "base/export.h"

namespace Tamrix {

/// What extractFromZipArchive() throws when there is no such entry.
inline constexpr const char* notInArchive = "file is not contained in the archive!\n";

/// Entries that are larger than this when unpacked, in bytes, are not extracted.
inline constexpr unsigned long maxEntrySize = 512UL << 20;

/// Nor are those that unpack to more than this many times their packed size, once they are larger
/// than freeEntrySize: sheets are packed ten to one, files made to fill the memory a thousand to
/// one.
inline constexpr qint64 maxPackedRatio = 100;
inline constexpr int freeEntrySize = 16 << 20;

/// The contents of an entry; letter case counts in `name`. `archive` is a handle of minizip's
/// unzOpen() and stays the caller's. Throws std::runtime_error when there is no such entry, it
/// exceeds maxEntrySize or maxPackedRatio, or it doesn't unpack to the size and check sum that the
/// archive says.
TAMRIX_EXPORT QByteArray extractFromZipArchive(void*& archive, const char* name);

}  // namespace Tamrix
