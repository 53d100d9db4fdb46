#pragma once

#include <QString>

#include "base/export.h"
#include "base/outcome.h"

namespace Tamrix {

/// The map of object names in a suite's folder: shared/objectnames.tsv, or when there is none the
/// script shared/scripts/names.py, or the like in another language. Where nothing is there, the path
/// of the first.
TAMRIX_EXPORT QString suiteObjectMap(const QString& suiteDirectory);

/// Brings the map in a file into use, in the form that the file's suffix tells. A script stays
/// unread until a name is asked for; one that is in use already stays so with what it knows. A
/// plain map that is not there is one without entries, whose file add() makes. On failure no names
/// are in use.
TAMRIX_EXPORT Outcome<> useObjectMap(const QString& path);

}  // namespace Tamrix
