#pragma once

#include <QByteArray>
#include <QString>

#include "base/export.h"
#include "base/outcome.h"
#include "platform/verification/verificationpoint.h"

namespace Tamrix {

// The files of verification points: JSON, and for a visual one a picture beside it. They may come
// from anyone: sizes and depths are checked before they are believed, and a failure says what is
// wrong and where. Any thread.

/// Largest file that is read, in bytes.
inline constexpr qint64 maximalPointFileSize = 16LL << 20;
/// Largest picture, in pixels.
inline constexpr qint64 maximalPicturePixels = 40LL << 20;
/// How deep elements may be nested.
inline constexpr int maximalElementDepth = 200;

/// Reads the JSON of a verification point; of a visual one without its picture. A failure tells the
/// line, or the place as in objects[0].properties[2].
TAMRIX_EXPORT Outcome<VerificationPoint> parseVerificationPoint(const QByteArray& json);
/// The JSON of a verification point, which parseVerificationPoint() reads to the same.
TAMRIX_EXPORT QByteArray verificationPointJson(const VerificationPoint& point);

/// Reads a file, and the picture beside it. The failure names the file.
TAMRIX_EXPORT Outcome<VerificationPoint> readVerificationPoint(const QString& path);
/// Writes the file, its folder included, and the picture beside it. Each file is replaced when the
/// new one is whole, and stays as it was on failure, which names it.
TAMRIX_EXPORT Outcome<> writeVerificationPoint(const QString& path, const VerificationPoint& point);

}  // namespace Tamrix
