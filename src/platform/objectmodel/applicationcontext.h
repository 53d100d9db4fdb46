#pragma once

#include <QDateTime>
#include <QSharedPointer>
#include <QString>

#include "base/export.h"
#include "base/shared.h"

namespace Tamrix {

class BackgroundTask;

/// A script's handle on one running application, made by the runner. Script thread only.
class TAMRIX_EXPORT ApplicationContext : public Shared {
public:
    /// The context's identifier; a negative one marks a failed start.
    int id = -1;
    QString name;
    QString commandLine;
    /// What it is made with, "Qt 6.4.2"; empty when unknown.
    QString toolkitVersion;
    /// The process id, -1 when unknown.
    int pid = -1;
    bool valid = false;
    QDateTime startTime;
    /// The script wants the application to end, however that happens: its end is no finding.
    bool isExitExpected = false;
    /// The video that is being made of it. Set by the runner; null when there is none, or when it
    /// was stopped by its context.
    QSharedPointer<BackgroundTask> videoCapture;

    /// "AUT '%1' (pid %2, started %3)" with the start time in ISO form.
    QString displayString() const;

    /// Ends what runs beside the script for this application, with a text for the report. Does
    /// nothing by default.
    virtual void stop(const QString& message);
};

}  // namespace Tamrix
