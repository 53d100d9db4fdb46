#pragma once

#include <QString>
#include <QStringList>

#include "base/outcome.h"

namespace Tamrix {

class CompositeReport;

/// What options for reports take.
inline constexpr const char* reportValueName = "FORMAT:PATH";

/// Appends descriptions of reports to others. Fails for unknown formats and for two reports that
/// write the same file.
Outcome<> addReports(const QStringList& descriptions, QStringList* reports);

/// Makes the reports, of which each tells when it fails.
Outcome<> openReports(const QStringList& descriptions, CompositeReport& reports);

/// Ends the reports; false when one of them could not be written, which has been told.
bool finishReports(CompositeReport& reports);

}  // namespace Tamrix
