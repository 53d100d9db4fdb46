#pragma once

#include <QString>

#include "base/export.h"
#include "platform/testresult/reportevent.h"

class QIODevice;

namespace Tamrix {

/// Receives every entry of a run as it happens. Lives on the script thread.
class TAMRIX_EXPORT ReportGenerator {
public:
    virtual ~ReportGenerator();

    virtual void add(const ReportEntry& entry) = 0;

    /// The run is over or was interrupted: writes what has not been written yet. Called once.
    virtual void finish() {}

    /// What went wrong with writing so far, ready for a person to read; empty when nothing did.
    virtual QString errorText() const { return {}; }

    /// A device to write a video for `targetPath` to, owned by the caller; null with `*error` set
    /// on failure. A report that keeps no videos of its own gives the file at that path.
    virtual QIODevice* openVideo(const QString& targetPath, QString* error);
};

}  // namespace Tamrix
