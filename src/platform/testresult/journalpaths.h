#pragma once

#include <QString>

#include "base/export.h"
#include "platform/testresult/reportevent.h"

// A journal and what lies in its folder can be moved together: files below that folder stand in it
// by relative paths. Scripts and what lies elsewhere keep their absolute ones.

namespace Tamrix::Journal {

/// Whether the event names a file in a folder by its absolute path, or by a relative one.
bool hasPathBelow(const ReportEvent& event, const QString& folder);
bool hasRelativePath(const ReportEvent& event);

/// The event with the path of its file counted from the folder, and back.
ReportEvent withRelativePath(ReportEvent event, const QString& folder);
ReportEvent withAbsolutePath(ReportEvent event, const QString& folder);

}  // namespace Tamrix::Journal
