#pragma once

#include <QString>

#include "base/export.h"
#include "base/outcome.h"

namespace Tamrix::TestData {

/// Whether the directory exists, with all above it. Each that is missing is made when `make` is
/// set; false then tells that this failed.
TAMRIX_EXPORT bool checkAndMakeDir(const QString& path, bool make);

/// Fails when the file can't be read as test data: it isn't there, is no file or may not be read.
/// The text is a reason alone, for behind a colon.
TAMRIX_EXPORT Outcome<> checkReadable(const QString& path);

}  // namespace Tamrix::TestData
