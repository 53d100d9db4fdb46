#pragma once

#include <QByteArray>
#include <QString>

#include "base/export.h"

class QFileDevice;

namespace Tamrix {

/// Hands all bytes to the operating system, behind what the file has buffered. False with the
/// system's reason in `*error` on failure, such as "No space left on device"; a part may have been
/// written then.
///
/// QFileDevice::write() knows no reason when the system took a part of the bytes before it failed,
/// as on a disk that becomes full.
TAMRIX_EXPORT bool writeAll(QFileDevice* file, const QByteArray& bytes, QString* error);

/// The same to an open descriptor.
TAMRIX_EXPORT bool writeAll(int descriptor, const QByteArray& bytes, QString* error);

}  // namespace Tamrix
