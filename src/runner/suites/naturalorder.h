#pragma once

#include <QString>

namespace Tamrix {

/// Whether `left` stands before `right` when a person sorts names: numbers in them by their value
/// ("case2" before "case10"), letters without regard to case. The same on every machine, whatever
/// its locale; names that differ only in case or in leading zeros have a fixed order, too. By hand,
/// since what QCollator does hangs on the locale and on how Qt was built.
bool naturallyBefore(const QString& left, const QString& right);

}  // namespace Tamrix
