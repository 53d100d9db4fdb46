#pragma once

#include <QString>
#include <QVariant>
#include <optional>

#include "runner/applications/application.h"
#include "vision/screenshot/screenshot.h"

namespace Tamrix {

class TestResult;

/// Records the moment of a failure beside the picture of the whole display: the objects of the
/// application, and the part of the display with its windows, in which the place is marked where
/// the mouse was pressed last. Script thread only.
class FailureMoment {
public:
    /// Stores files in the folder, which is there, and attaches them to the result that comes next.
    /// `desktop` may be null: then only the objects are kept. What can't be had is left out with a
    /// Qt warning: the failure itself must not be lost.
    void keep(Application& application, const Screenshot& desktop, const QString& folder,
              TestResult* result);

    /// Another test case begins, or another folder is in use.
    void reset();

private:
    void keepWindows(Application& application, const Screenshot& desktop, const QString& folder,
                     TestResult* result);
    void keepObjects(Application& application, const QString& folder, TestResult* result);

    // The last ones and their files: of a script that fails again and again at the same view, one
    // file of each is enough.
    QImage m_lastPicture;
    QString m_lastPictureFile;
    QByteArray m_lastObjects;
    QString m_lastObjectsFile;
};

/// The part of a screenshot with the application's windows; `lastPress` is marked in it. Positions
/// are native. A null image without windows in it.
QImage windowsPicture(const Screenshot& desktop, const QList<QRect>& windows,
                      const std::optional<QPoint>& lastPress);

/// Where the mouse was pressed last, of an application's answer to "screenLayout"; native.
std::optional<QPoint> lastPressOf(const QVariantMap& layout);

}  // namespace Tamrix
