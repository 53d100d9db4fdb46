#pragma once

#include <QString>
#include <QStringList>

#include "base/outcome.h"
#include "platform/objectmodel/objectmap.h"

namespace Tamrix {

/// The names of a suite's map that no file of the suite mentions, and no other name that is used
/// refers to; sorted. Files are all texts in the suite's folder and below: scripts, features,
/// verification points, data. Names that scripts put together from parts can't be seen. Fails when
/// the map or a file can't be read.
Outcome<QStringList> unusedNames(const QString& suiteDirectory, ObjectMap& map);

}  // namespace Tamrix
