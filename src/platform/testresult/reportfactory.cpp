#include "platform/testresult/reportfactory.h"

#include <QFile>
#include <QStringList>
#include <cstdio>

#include "platform/testresult/htmlreport.h"
#include "platform/testresult/journalreport.h"
#include "platform/testresult/junitreport.h"
#include "platform/testresult/reporttarget.h"

namespace Tamrix {

namespace {

using Generator = std::unique_ptr<ReportGenerator>;

Generator createConsoleReport(const QString& path, ConsoleReport::Verbosity verbosity,
                              QString* error) {
    auto file = std::make_unique<QFile>();
    bool isOpen = false;
    if (path.isEmpty() || path == QLatin1String("-")) {
        file->setFileName(QStringLiteral("standard output"));
        isOpen = file->open(stdout, QIODevice::WriteOnly);
    } else {
        file->setFileName(prepareReportTarget(path, error));
        if (!error->isEmpty())
            return nullptr;
        isOpen = file->open(QIODevice::WriteOnly);
    }
    if (!isOpen) {
        *error = QStringLiteral("The report '%1' can't be written: %2")
                     .arg(file->fileName(), file->errorString());
        return nullptr;
    }
    return std::make_unique<ConsoleReport>(std::move(file), verbosity, false);
}

/// A generator that tells at once when its file can't be written.
template <typename Report>
Generator createFileReport(const QString& path, ConsoleReport::Verbosity, QString* error) {
    auto report = std::make_unique<Report>(path);
    *error = report->errorText();
    return error->isEmpty() ? std::move(report) : nullptr;
}

struct Format {
    const char* name;
    bool needsPath;
    Generator (*create)(const QString& path, ConsoleReport::Verbosity verbosity, QString* error);
};

const Format formats[] = {
    {"console", false, createConsoleReport},
    {"html", true, createFileReport<HtmlReport>},
    {"json", true, createFileReport<JournalReport>},
    {"junit", true, createFileReport<JUnitReport>},
};

const Format* findFormat(const QString& name) {
    for (const Format& format : formats) {
        if (name == QLatin1String(format.name))
            return &format;
    }
    return nullptr;
}

}  // namespace

QString parseReportDescription(const QString& text, ReportDescription* description) {
    const int colon = text.indexOf(QLatin1Char(':'));
    description->format = text.left(colon);
    description->path = colon < 0 ? QString() : text.mid(colon + 1);

    const Format* format = findFormat(description->format);
    if (!format) {
        QStringList names;
        for (const Format& known : formats)
            names += QLatin1String(known.name);
        return QStringLiteral("Unknown report format '%1' in '%2'; the known ones are %3")
            .arg(description->format, text, names.join(QLatin1String(", ")));
    }
    if (format->needsPath && description->path.isEmpty())
        return QStringLiteral("The report format '%1' needs a path: %1:PATH")
            .arg(description->format);
    return QString();
}

std::unique_ptr<ReportGenerator> createReportGenerator(const QString& text, QString* error,
                                                       ConsoleReport::Verbosity verbosity) {
    ReportDescription description;
    *error = parseReportDescription(text, &description);
    if (!error->isEmpty())
        return nullptr;
    return findFormat(description.format)->create(description.path, verbosity, error);
}

}  // namespace Tamrix
