#pragma once

#include <QString>

namespace Tamrix {

/// Whether both paths lead to one file, which need not exist.
bool isSameFile(const QString& left, const QString& right);

}  // namespace Tamrix
