// "tamrixrunner inspect": the objects of a program, or the names of one of them.

#include <QBuffer>

#include "base/textescape.h"
#include "runner/applications/applications.h"
#include "runner/applications/objectnames.h"
#include "runner/applications/objecttree.h"
#include "runner/commands/command.h"
#include "runner/commands/displayoption.h"
#include "runner/commands/waitoption.h"
#include "runner/processes/interrupt.h"
#include "runner/processes/shellwords.h"
#include "runner/processes/terminal.h"
#include "shared/uiabstraction/xmlexporter.h"
#include "vision/screenshot/screenshot.h"

namespace Tamrix {

namespace {

enum class TreeFormat { Text, Json, Xml };

struct InspectSettings {
    /// A program and its arguments.
    QStringList program;
    /// "inherit", "auto" or ":N".
    QString display;
    /// The way into the program. Not null.
    const Launcher* launcher = &Launcher::standard();
    TreeFormat format = TreeFormat::Text;
    /// Whose names are told in place of the tree; none for the tree.
    std::optional<WantedObject> namesOf;
    /// Where a picture of the screen is stored, empty for nowhere.
    QString screenshotFile;
    /// How long to wait before looking.
    double waitSeconds = 0;
};

Outcome<> readHook(const QStringList& values, InspectSettings& settings) {
    settings.launcher = Launcher::find(values.constLast());
    if (settings.launcher)
        return {};
    return wrongUsage(QStringLiteral("--hook takes %1, not '%2'")
                          .arg(Launcher::namesText(), values.constLast()));
}

Outcome<> readNamesOf(const QStringList& values, InspectSettings& settings) {
    const Outcome<WantedObject> wanted = readWantedObject(values.constLast());
    if (!wanted)
        return wrongUsage(QStringLiteral("--names: %1").arg(wanted.error().text));
    settings.namesOf = *wanted;
    return {};
}

Outcome<> readArguments(const CommandArguments& arguments, InspectSettings& settings) {
    settings.program = arguments.own;
    return {};
}

/// The tree in the wanted form. For people, what the program is made with stands above it.
Outcome<QByteArray> formattedTree(Access& access, TreeFormat format) {
    if (format != TreeFormat::Xml) {
        const Outcome<Wire::ObjectListing> listing = access.listing();
        if (!listing)
            return fail(listing.error());
        if (format == TreeFormat::Json)
            return objectTreeJson(*listing);
        const ApplicationFacts facts = access.facts();
        return QStringLiteral("%1, %2\n%3")
            .arg(escapedForTerminal(facts.toolkit), escapedForTerminal(facts.platform),
                 objectTreeText(*listing))
            .toLocal8Bit();
    }
    const Outcome<QByteArray> elements = access.snapshot({});
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
QString storeScreenshot(Access& access, const QString& fileName) {
    const Outcome<QVariant> picture = access.nativeRequest(QStringLiteral("desktopScreenshot"), {});
    if (!picture)
        return QStringLiteral("no picture of the screen came: %1").arg(picture.error().text);
    const QImage image = Screenshot::fromVariant(*picture).image();
    if (image.isNull())
        return QStringLiteral("no picture of the screen came: it is empty");
    if (!image.save(fileName, fileName.contains(QLatin1Char('.')) ? nullptr : "PNG"))
        return QStringLiteral("the picture of the screen can't be written to '%1'").arg(fileName);
    return {};
}

/// What is printed, and whether there was something to be told.
struct Inspection {
    QByteArray text;
    bool isFound = true;
};

Outcome<Inspection> look(Access& access, const InspectSettings& settings) {
    if (!settings.namesOf) {
        const Outcome<QByteArray> tree = formattedTree(access, settings.format);
        if (!tree)
            return fail(tree.error());
        return Inspection{*tree, true};
    }
    const Outcome<ObjectNames> names = describeNames(access, *settings.namesOf);
    if (!names)
        return fail(names.error());
    return Inspection{names->text.toLocal8Bit(), names->isFound};
}

/// Gives the exit code of what went well, or else what went wrong.
Outcome<int> inspectWith(Applications& applications, const InspectSettings& settings) {
    if (const Outcome<> used = applications.useDisplay(settings.display); !used)
        return fail(used.error());
    Outcome<ApplicationStart> start = resolveApplication(quotedShellWords(settings.program), {});
    if (!start)
        return fail(start.error());
    start->launcher = settings.launcher;
    const Outcome<SharedPtr<Application>> started = applications.start(*start, -1);
    if (!started)
        return fail(started.error());
    const SharedPtr<Application>& application = *started;
    letSettle(applications, settings.waitSeconds);

    const Outcome<Inspection> inspection = look(application->access(), settings);
    QString error = inspection ? QString() : inspection.error().text;
    if (inspection && !settings.screenshotFile.isEmpty())
        error = storeScreenshot(application->access(), settings.screenshotFile);
    const QString end = application->endText();
    if (!error.isEmpty() && !end.isEmpty())
        error = end;
    if (error.isEmpty() && !writeBytes(stdout, inspection->text))
        error = QStringLiteral("standard output can't be written");
    if (!error.isEmpty())
        return fail(FailureKind::Failed, error);
    return inspection->isFound ? ExitSuccess : ExitFailure;
}

int inspectApplication(const InspectSettings& settings) {
    Interrupt::install();
    Applications applications;
    const Outcome<int> code = inspectWith(applications, settings);
    applications.endAll();
    if (Interrupt::signalNumber() != 0)
        return Interrupt::exitCode(Interrupt::signalNumber());
    return code ? *code : failWith(code.error().text);
}

}  // namespace

Command inspectCommand() {
    return makeCommand<InspectSettings>(
        {{"inspect", "PROGRAM [ARGUMENT...]",
          "Starts a program and prints its objects with the names that find them.", 1,
          CommandSyntax::anyNumber, CommandTail::Program},
         {displayOption(&InspectSettings::display),
          {"hook", "NAME",
           "How the program is reached, as in config.xml: %1, preload, or none for one without agent.",
           "plugin", readHook},
          {"json", nullptr, "Prints JSON.", nullptr,
           setTo(&InspectSettings::format, TreeFormat::Json)},
          {"xml", nullptr, "Prints XML, in the form of coverage files.", nullptr,
           setTo(&InspectSettings::format, TreeFormat::Xml)},
          {"names", "OBJECT",
           "Prints the names of one object, given by a name or as a point X,Y of the screen.",
           nullptr, readNamesOf},
          {"screenshot", "FILE", "Stores a picture of the screen in this file.", nullptr,
           textTo(&InspectSettings::screenshotFile)},
          waitOption(&InspectSettings::waitSeconds)},
         {{"json", "xml"}, {"json", "names"}, {"xml", "names"}},
         readArguments,
         inspectApplication});
}

}  // namespace Tamrix
