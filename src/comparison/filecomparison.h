#pragma once

#include <QString>
#include <QStringList>

#include "base/export.h"
#include "comparison/xmlcompareoptions.h"

namespace Tamrix {

/// How the comparison of two files ended. Plain data.
struct FileComparison {
    /// Why there is no outcome: a file that can't be read, or differences that are too long for a
    /// text. The rest is then empty.
    QString error;
    bool equal = false;
    /// What was compared, for the result's message.
    QString message;
    /// What was found, for the result's detail.
    QString detail;
    /// What is wrong with each file that is no JSON, beginning with its name. The detail's words
    /// don't say which file they are about.
    QStringList invalidFiles;
};

/// Compares line by line. Unless `strictLineEndings`, a CRLF is as good as a line feed.
TAMRIX_EXPORT FileComparison compareTextFiles(const QString& expected, const QString& actual,
                                              bool strictLineEndings);

/// Compares the values, whatever their layout and the order of names; the detail of a difference
/// names the first one and has a diff of both files in one layout.
TAMRIX_EXPORT FileComparison compareJsonFiles(const QString& expected, const QString& actual);

/// Compares the documents; the detail of a difference names the first element without a match.
TAMRIX_EXPORT FileComparison compareXmlFiles(const QString& expected, const QString& actual,
                                             const XmlCompareOptions& options);

}  // namespace Tamrix
