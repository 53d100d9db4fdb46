#include "runner/commands/inspect.h"

#include <QBuffer>
#include <QDeadlineTimer>
#include <algorithm>

#include "runner/applications/applications.h"
#include "runner/applications/objecttree.h"
#include "runner/commands/commandline.h"
#include "runner/commands/commands.h"
#include "runner/processes/interrupt.h"
#include "runner/processes/shellwords.h"
#include "runner/processes/terminal.h"
#include "shared/uiabstraction/xmlexporter.h"
#include "vision/screenshot.h"

namespace Tamrix {

namespace {

/// The tree in the wanted form.
Outcome<QByteArray> formattedTree(RemoteModel& model, CommandLine::TreeFormat format) {
    if (format != CommandLine::TreeFormat::Xml) {
        const Outcome<Wire::ObjectListing> listing = model.listing();
        if (!listing)
            return fail(listing.error());
        return format == CommandLine::TreeFormat::Json ? objectTreeJson(*listing)
                                                       : objectTreeText(*listing).toLocal8Bit();
    }
    const Outcome<QByteArray> elements = model.snapshot({});
    if (!elements)
        return elements;
    UIAbstraction::XmlExporter exporter(*elements);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!exporter.toXml(&buffer))
        return fail(FailureKind::Failed, exporter.errorMessage());
    return buffer.data();
}

/// Stores a picture of the screen. Returns an error text, empty on success.
QString storeScreenshot(RemoteModel& model, const QString& fileName) {
    const Outcome<QVariant> picture = model.nativeRequest(QStringLiteral("desktopScreenshot"), {});
    if (!picture)
        return QStringLiteral("no picture of the screen came: %1").arg(picture.error().text);
    const QImage image = Screenshot::fromVariant(*picture).image();
    if (image.isNull())
        return QStringLiteral("no picture of the screen came: it is empty");
    if (!image.save(fileName, fileName.contains(QLatin1Char('.')) ? nullptr : "PNG"))
        return QStringLiteral("the picture of the screen can't be written to '%1'").arg(fileName);
    return {};
}

/// Lets the program settle.
void pause(Applications& applications, double seconds) {
    const QDeadlineTimer deadline(static_cast<qint64>(seconds * 1000));
    while (!deadline.hasExpired() && !applications.isInterrupted())
        applications.waitForNews(static_cast<int>(std::min<qint64>(deadline.remainingTime(), 50)));
}

/// Returns an error text, empty on success.
QString inspectWith(Applications& applications, const CommandLine& line) {
    QString error = applications.useDisplay(line.display);
    if (!error.isEmpty())
        return error;
    QStringList words;
    for (const QString& word : line.program)
        words.append(quotedShellWord(word));
    const ApplicationStart start = resolveApplication(words.join(QLatin1Char(' ')), {}, &error);
    if (!error.isEmpty())
        return error;
    const SharedPtr<Application> application = applications.start(start, -1, &error);
    if (!application)
        return error;
    pause(applications, line.waitSeconds);

    const Outcome<QByteArray> tree = formattedTree(application->model(), line.treeFormat);
    if (!tree)
        error = tree.error().text;
    if (tree && !line.screenshotFile.isEmpty())
        error = storeScreenshot(application->model(), line.screenshotFile);
    const QString end = application->endText();
    if (!error.isEmpty() && !end.isEmpty())
        error = end;
    if (error.isEmpty() && !writeBytes(stdout, *tree))
        error = QStringLiteral("standard output can't be written");
    return error;
}

}  // namespace

int inspectApplication(const CommandLine& commandLine) {
    Interrupt::install();
    Applications applications;
    const QString error = inspectWith(applications, commandLine);
    applications.endAll();
    if (Interrupt::signalNumber() != 0)
        return Interrupt::exitCode(Interrupt::signalNumber());
    return error.isEmpty() ? ExitSuccess : failWith(error);
}

}  // namespace Tamrix
