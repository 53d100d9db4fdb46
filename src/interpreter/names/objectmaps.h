#pragma once

#include <QString>
#include <memory>

#include "base/export.h"
#include "base/outcome.h"
#include "platform/objectmodel/objectmap.h"

namespace Tamrix {

/// The map of object names in a suite's folder: shared/objectnames.tsv, or when there is none the
/// script shared/scripts/names.py, or the like in another language. Where nothing is there, the
/// path of the first.
TAMRIX_EXPORT QString suiteObjectMap(const QString& suiteDirectory);

/// The map in a file, in the form that the file's suffix tells. A script stays unread until a name
/// is asked for. A plain map that is not there is one without entries, whose file add() makes.
/// Fails when a script's language has no maps, and for a faulty plain one.
TAMRIX_EXPORT Outcome<std::unique_ptr<ObjectMap>> openObjectMap(const QString& path);

/// Brings that map into use. A script that is in use already stays so with what it knows. On
/// failure no names are in use.
TAMRIX_EXPORT Outcome<> useObjectMap(const QString& path);

}  // namespace Tamrix
