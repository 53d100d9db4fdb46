#pragma once

#include <QString>
#include <memory>

#include "base/export.h"
#include "base/outcome.h"
#include "platform/testresult/consolereport.h"
#include "platform/testresult/reportgenerator.h"

namespace Tamrix {

/// What a user's "FORMAT:PATH" names.
struct ReportDescription {
    QString format;
    QString path;

    bool isStandardOutput() const { return path.isEmpty() || path == QLatin1String("-"); }
};

/// Parses a "FORMAT:PATH". Fails for an unknown format, or a missing path where the format needs
/// one. Does not touch the file.
TAMRIX_EXPORT Outcome<ReportDescription> parseReportDescription(const QString& text);

/// Makes the report generator that a "FORMAT:PATH" names. Fails when the description is wrong or
/// the file can't be written.
///
///     allure:DIR     a folder of results for Allure
///     console        on standard output; also "console:" and "console:-"
///     console:PATH   the same text in a file
///     cucumber-messages:PATH   the scenarios as Cucumber Messages, written at the end
///     html:DIR       a folder with index.html and what belongs to it, written at the end
///     json:PATH      the journal, which begins at once and replaces the file
///     junit:PATH     JUnit XML, written at the end
///     tap:PATH       TAP, written at the end
///
/// `verbosity` concerns the console format, which is written without colour.
TAMRIX_EXPORT Outcome<std::unique_ptr<ReportGenerator>> createReportGenerator(
    const QString& text, ConsoleReport::Verbosity verbosity = ConsoleReport::Verbosity::Normal);

}  // namespace Tamrix
