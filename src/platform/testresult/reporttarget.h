#pragma once

#include <QByteArray>
#include <QString>

namespace Tamrix {

/// Makes ready to write a report to `path`: the folder is created when it is missing. Returns the
/// absolute path, since a test case changes the working directory. With `*error` set, the path
/// can't take a report, and the text says why.
QString prepareReportTarget(const QString& path, QString* error);

/// Writes a report that is written at the end: beside its place, and moved there when it is whole.
/// Returns an error text, empty on success.
QString writeReport(const QString& path, const QByteArray& contents);

}  // namespace Tamrix
