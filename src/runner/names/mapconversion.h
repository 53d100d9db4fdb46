#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

#include "base/outcome.h"

namespace Tamrix {

/// A map of object names in another form.
struct ConvertedMap {
    QByteArray content;
    /// Names that had to change, before and after, as maps have them: ":Save it", ":Save_it".
    QList<QPair<QString, QString>> renamed;
};

/// Writes the map in the file `from` in the form that the suffix of the file `to` tells; neither
/// file is changed. Comments and the order stay, but that in scripts an entry comes behind those
/// that it refers to. Fails when the map can't be read, and when what was written would mean
/// something else.
Outcome<ConvertedMap> convertMap(const QString& from, const QString& to);

}  // namespace Tamrix
