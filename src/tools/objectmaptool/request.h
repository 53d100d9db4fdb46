#pragma once

#include <QString>
#include <QStringList>

#include "base/outcome.h"

namespace Tamrix {

/// What the program is asked for: the entries of a map.
struct MapRequest {
    /// The map's script.
    QString path;
    /// The script's text comes from standard input and stands for that of the file.
    bool readsStandardInput = false;
};

/// Reads the command line behind the program's name. A failure tells what is wrong with it.
Outcome<MapRequest> parseMapRequest(const QStringList& arguments);

}  // namespace Tamrix
