#pragma once

#include <QMap>
#include <QString>
#include <vector>

#include "base/export.h"
#include "base/outcome.h"
#include "platform/objectmodel/objectname.h"

namespace Tamrix {

/// The entries of a plain map's text, with the faults of its lines.
struct SerializedMap {
    struct Fault {
        int line;
        QString text;
    };

    QMap<QString, ObjectName> names;
    /// Where each stands, from 1.
    QMap<QString, int> lines;
    std::vector<Fault> faults;
};

TAMRIX_EXPORT SerializedMap parseMap(const QString& text);

/// Reads a plain map's file, whose references must all mean a name of it. Fails with a line for
/// each fault, which names file and line.
Outcome<QMap<QString, ObjectName>> readMapFile(const QString& path);

}  // namespace Tamrix
