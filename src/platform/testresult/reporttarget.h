#pragma once

#include <QString>

namespace Tamrix {

/// Makes ready to write a report to `path`: the folder is created when it is missing. Returns the
/// absolute path, since a test case changes the working directory. With `*error` set, the path
/// can't take a report, and the text says why.
QString prepareReportTarget(const QString& path, QString* error);

}  // namespace Tamrix
