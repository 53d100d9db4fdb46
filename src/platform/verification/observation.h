#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QString>
#include <vector>

#include "base/export.h"
#include "base/outcome.h"
#include "platform/objectmodel/object.h"
#include "platform/verification/verificationpoint.h"

namespace Tamrix {

// What objects of an application tell for verification points. Script thread only.

/// The value of a property, of the path of one ("geometry.width"): bools, numbers, texts and lists
/// as such, null for none, everything else as text, an object by its name.
Outcome<QJsonValue> observedProperty(const SharedPtr<Object>& object, const QString& path);

/// Cells of an item view. The counts are those of the whole view.
struct ObservedTable {
    struct Cell {
        QString text;
        CellColor background;
    };
    int rowCount = 0;
    int columnCount = 0;
    /// Those that were asked for, as far as they are there.
    std::vector<std::vector<Cell>> rows;
};

/// The cells from this one on, at most so many rows and columns; -1 for all.
Outcome<ObservedTable> observedTable(const SharedPtr<Object>& object, int firstRow, int firstColumn,
                                     int rowCount, int columnCount);

/// The visible elements of a snapshot with its picture (see requestObjectSnapshotForVisualVP). The
/// point has the name of the object, the usual rules and no picture file.
TAMRIX_EXPORT Outcome<VisualPoint> visualPointOf(const QByteArray& snapshot);
Outcome<VisualPoint> observedVisual(const SharedPtr<Object>& object);

}  // namespace Tamrix
