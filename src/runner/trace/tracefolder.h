#pragma once

#include <QByteArray>
#include <QDir>
#include <QString>

#include "base/outcome.h"

namespace Tamrix {

// The folder of a trace, whose page opens from the disk: browsers let such a page take scripts and
// pictures by their tags and nothing else, so all data are scripts that call a function of the
// page.
//
//     index.html, trace.js, trace.css   the page
//     cases.js                          a line for each start and end of a case
//     cases.count                       how many have begun
//     tiles/HASH.png                    the pictures' tiles and what lies on them, of all cases
//     case-NUMBER/steps-NUMBER.js       a line for each step of a case, so many in each file
//
// A line is written in one piece, behind the others: what is killed leaves whole lines.

/// How many steps a file holds. The first of each tells everything anew, so that a file can be read
/// without those before it.
inline constexpr int stepsInFile = 50;

/// Makes the folder, with a page and without cases; a trace that is there is removed. Fails when
/// the folder holds anything else.
Outcome<> createTraceFolder(const QString& folder);

/// Makes the folder of another case, below that of the trace, also while other processes do;
/// returns its name. None is given twice, also when the first case's folder is gone.
Outcome<QString> createCaseFolder(const QString& folder);

/// Appends a line "FUNCTION(JSON);" to a file in one piece. The file is made when it is not there.
Outcome<> appendCall(const QString& path, const char* function, const QByteArray& json);

}  // namespace Tamrix
