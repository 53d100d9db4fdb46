#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix {

/// Where two texts differ, for results that compared them; empty when a look at both shows that
/// anyway, or when they are equal.
///
/// Texts of several lines give the differing lines in the unified format of diff, those of `first`
/// behind "-", those of `second` behind "+". Long texts of one line give the first place where they
/// differ, with what stands around it. Of texts with very many differing lines, which would take
/// long to be matched, the first differing line is told.
TAMRIX_EXPORT QString explainDifference(const QString& first, const QString& second);

}  // namespace Tamrix
