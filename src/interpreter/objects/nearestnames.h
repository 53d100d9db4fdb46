#pragma once

#include <QString>
#include <QStringList>

#include "base/export.h"

namespace Tamrix {

/// How alike two names are, from 0 to 1: twice the letters of the parts that both have in the same
/// order, of all letters. The longest common part counts first, then those beside it.
TAMRIX_EXPORT double likeness(const QString& name, const QString& wanted);

/// Up to three of the names that may have been meant by `wanted`, the most alike first.
TAMRIX_EXPORT QStringList nearestNames(const QString& wanted, const QStringList& names);

}  // namespace Tamrix
