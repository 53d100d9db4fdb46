#include "platform/testresult/reportfactory.h"

#include <QFile>
#include <QStringList>
#include <cstdio>

#include "platform/testresult/allurereport.h"
#include "platform/testresult/htmlreport.h"
#include "platform/testresult/journalreport.h"
#include "platform/testresult/junitreport.h"
#include "platform/testresult/messages/messagesreport.h"
#include "platform/testresult/reporttarget.h"
#include "platform/testresult/tapreport.h"

namespace Tamrix {

namespace {

using Generator = Outcome<std::unique_ptr<ReportGenerator>>;

Generator createConsoleReport(const ReportDescription& description,
                              ConsoleReport::Verbosity verbosity) {
    auto file = std::make_unique<QFile>();
    bool isOpen = false;
    if (description.isStandardOutput()) {
        file->setFileName(QStringLiteral("standard output"));
        isOpen = file->open(stdout, QIODevice::WriteOnly);
    } else {
        QString error;
        file->setFileName(prepareReportTarget(description.path, &error));
        if (!error.isEmpty())
            return fail(FailureKind::Failed, error);
        isOpen = file->open(QIODevice::WriteOnly);
    }
    if (!isOpen) {
        return fail(FailureKind::Failed, QStringLiteral("The report '%1' can't be written: %2")
                                             .arg(file->fileName(), file->errorString()));
    }
    return std::make_unique<ConsoleReport>(std::move(file), verbosity,
                                           ConsoleReport::Decoration::None);
}

/// A generator that tells at once when its file can't be written.
template <typename Report>
Generator createFileReport(const ReportDescription& description, ConsoleReport::Verbosity) {
    auto report = std::make_unique<Report>(description.path);
    const QString error = report->errorText();
    if (!error.isEmpty())
        return fail(FailureKind::Failed, error);
    return report;
}

struct Format {
    const char* name;
    bool needsPath;
    Generator (*create)(const ReportDescription& description, ConsoleReport::Verbosity verbosity);
};

const Format formats[] = {
    {"allure", true, createFileReport<AllureReport>},
    {"console", false, createConsoleReport},
    {"cucumber-messages", true, createFileReport<MessagesReport>},
    {"html", true, createFileReport<HtmlReport>},
    {"json", true, createFileReport<JournalReport>},
    {"junit", true, createFileReport<JUnitReport>},
    {"tap", true, createFileReport<TapReport>},
};

const Format* findFormat(const QString& name) {
    for (const Format& format : formats) {
        if (name == QLatin1String(format.name))
            return &format;
    }
    return nullptr;
}

}  // namespace

Outcome<ReportDescription> parseReportDescription(const QString& text) {
    const int colon = text.indexOf(QLatin1Char(':'));
    ReportDescription description{text.left(colon), colon < 0 ? QString() : text.mid(colon + 1)};

    const Format* format = findFormat(description.format);
    if (!format) {
        QStringList names;
        for (const Format& known : formats)
            names += QLatin1String(known.name);
        return fail(FailureKind::BadArgument,
                    QStringLiteral("Unknown report format '%1' in '%2'; the known ones are %3")
                        .arg(description.format, text, names.join(QLatin1String(", "))));
    }
    if (format->needsPath && description.path.isEmpty()) {
        return fail(
            FailureKind::BadArgument,
            QStringLiteral("The report format '%1' needs a path: %1:PATH").arg(description.format));
    }
    return description;
}

Outcome<std::unique_ptr<ReportGenerator>> createReportGenerator(
    const QString& text, ConsoleReport::Verbosity verbosity) {
    const Outcome<ReportDescription> description = parseReportDescription(text);
    if (!description)
        return fail(description.error());
    return findFormat(description->format)->create(*description, verbosity);
}

}  // namespace Tamrix
