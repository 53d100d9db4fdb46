// "tamrixrunner vp": makes and shows verification points.

#include <QDeadlineTimer>
#include <QDir>

#include "base/textescape.h"
#include "interpreter/names/objectmaps.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectmap.h"
#include "platform/verification/pointcreation.h"
#include "platform/verification/pointtext.h"
#include "platform/verification/verificationpointfile.h"
#include "runner/applications/applications.h"
#include "runner/commands/command.h"
#include "runner/commands/displayoption.h"
#include "runner/commands/waitoption.h"
#include "runner/processes/interrupt.h"
#include "runner/suites/suite.h"
#include "shared/resources/testresource.h"

namespace Tamrix {

namespace {

/// How long the object may take to appear, in milliseconds.
constexpr int objectTimeout = 20000;

enum class PointKind { Properties, Table, Visual };

struct VpSettings {
    enum class Task { Create, Show };
    Task task = Task::Show;
    /// The file to show, or the name of the one to make.
    QString file;
    // For a new one.
    QString program;
    QString object;
    PointKind kind = PointKind::Properties;
    QStringList properties;
    CellContent cells = CellContent::Texts;
    /// Empty without one.
    QString suite;
    QString display;
    double waitSeconds = 0;
};

Outcome<> readKind(const QStringList& values, VpSettings& settings) {
    constexpr struct {
        const char* name;
        PointKind kind;
    } kinds[] = {
        {"properties", PointKind::Properties},
        {"table", PointKind::Table},
        {"visual", PointKind::Visual},
    };
    for (const auto& each : kinds) {
        if (values.constLast() == QLatin1String(each.name)) {
            settings.kind = each.kind;
            return {};
        }
    }
    return wrongUsage(QStringLiteral("--kind takes properties, table or visual, not '%1'")
                          .arg(values.constLast()));
}

Outcome<> readArguments(const CommandArguments& arguments, VpSettings& settings) {
    const QString& task = arguments.own.constFirst();
    if (task == QLatin1String("show")) {
        if (arguments.own.size() != 2)
            return wrongUsage(QStringLiteral("vp show takes one file"));
        settings.task = VpSettings::Task::Show;
        settings.file = arguments.own.at(1);
        return {};
    }
    if (task != QLatin1String("create"))
        return wrongUsage(QStringLiteral("vp knows the tasks create and show, not '%1'").arg(task));
    if (arguments.own.size() != 3)
        return wrongUsage(QStringLiteral("vp create takes a program and a name"));
    if (settings.object.isEmpty())
        return wrongUsage(QStringLiteral("vp create needs --object NAME"));
    settings.task = VpSettings::Task::Create;
    settings.program = arguments.own.at(1);
    settings.file = arguments.own.at(2);
    return {};
}

/// Where the new file goes, and where its program is looked for.
struct Destination {
    QString path;
    ApplicationPlaces places;
};

Outcome<Destination> destinationOf(const VpSettings& settings) {
    ObjectMap::use(nullptr);
    if (settings.suite.isEmpty())
        return Destination{settings.file, {}};
    const Outcome<Suite> suite = loadSuite(settings.suite);
    if (!suite)
        return fail(suite.error());
    const QDir shared(suite->directory + QStringLiteral("/shared"));
    if (const Outcome<> used = useObjectMap(suiteObjectMap(suite->directory)); !used)
        return fail(used.error());
    const QString folder = TestResource::directoryName(TestResource::VerificationPoint);
    return Destination{QDir(shared.filePath(folder)).filePath(settings.file),
                       {suite->directory, suite->config.fileName, suite->config.applications}};
}

/// Waits for the object.
Outcome<SharedPtr<Object>> waitForObject(Applications& applications, const QString& name) {
    const QDeadlineTimer deadline(objectTimeout);
    while (true) {
        if (const SharedPtr<Object> object = Inspector::self()->findObject(name))
            return object;
        const Failure& failure = Inspector::self()->lastFailure();
        if (failure.kind != FailureKind::NotFound || deadline.hasExpired() ||
            applications.isInterrupted())
            return fail(failure);
        applications.waitForNews(50);
    }
}

Outcome<VerificationPoint> pointOf(const SharedPtr<Object>& object, const VpSettings& settings) {
    switch (settings.kind) {
        case PointKind::Properties:
            return propertiesPointOf(object, settings.object, settings.properties);
        case PointKind::Table:
            return tablePointOf(object, settings.object, settings.cells);
        case PointKind::Visual:
            break;
    }
    const Outcome<QByteArray> snapshot = requestObjectSnapshotForVisualVP(object);
    if (!snapshot)
        return fail(snapshot.error());
    return visualPointOf(*snapshot, settings.object);
}

/// The path of the new file.
Outcome<QString> createWith(Applications& applications, const VpSettings& settings) {
    const Outcome<Destination> destination = destinationOf(settings);
    if (!destination)
        return fail(destination.error());
    if (QFileInfo::exists(destination->path))
        return fail(FailureKind::Refused,
                    QStringLiteral("File '%1' already exists").arg(destination->path));
    if (const Outcome<> used = applications.useDisplay(settings.display); !used)
        return fail(used.error());
    const Outcome<ApplicationStart> start =
        resolveApplication(settings.program, destination->places);
    if (!start)
        return fail(start.error());
    const Outcome<SharedPtr<Application>> application = applications.start(*start, -1);
    if (!application)
        return fail(application.error());
    applications.setCurrent(*application);
    const Outcome<SharedPtr<Object>> object = waitForObject(applications, settings.object);
    if (!object)
        return fail(object.error());
    letSettle(applications, settings.waitSeconds);
    const Outcome<VerificationPoint> point = pointOf(*object, settings);
    if (!point)
        return fail(point.error());
    const Outcome<> created = createVerificationPointFile(destination->path, *point);
    if (!created)
        return fail(created.error());
    return destination->path;
}

int createPoint(const VpSettings& settings) {
    Interrupt::install();
    Applications applications;
    const Outcome<QString> path = createWith(applications, settings);
    applications.endAll();
    if (Interrupt::signalNumber() != 0)
        return Interrupt::exitCode(Interrupt::signalNumber());
    return path ? show(escapedForTerminal(*path) + QLatin1Char('\n')) : failWith(path.error().text);
}

int showPoint(const VpSettings& settings) {
    const Outcome<VerificationPoint> point = readVerificationPoint(settings.file);
    return point ? show(escapedForTerminal(verificationPointText(*point)))
                 : failWith(point.error().text);
}

int makeOrShow(const VpSettings& settings) {
    return settings.task == VpSettings::Task::Create ? createPoint(settings) : showPoint(settings);
}

}  // namespace

Command vpCommand() {
    return makeCommand<VpSettings>(
        {{"vp", "create PROGRAM NAME | show FILE",
          "Makes a verification point of what a program shows, or prints one.", 2, 3},
         {{"object", "NAME", "create: the object, by a real or symbolic name.", nullptr,
           textTo(&VpSettings::object)},
          {"kind", "properties|table|visual",
           "create: what is expected of it: %1 (the default), the cells of a view, or what it "
           "looks like.",
           "properties", readKind},
          {"property", "NAME",
           "create: a property to expect; may be given several times. Without, those that tell "
           "what a user sees.",
           nullptr, allTo(&VpSettings::properties)},
          {"backgrounds", nullptr, "create: expects the background colours of cells, too.", nullptr,
           setTo(&VpSettings::cells, CellContent::TextsAndBackgrounds)},
          {"suite", "SUITE",
           "create: stores the file in the shared folder of this suite, whose applications and "
           "symbolic names are known.",
           nullptr, textTo(&VpSettings::suite)},
          displayOption(&VpSettings::display),
          waitOption(&VpSettings::waitSeconds)},
         {},
         readArguments,
         makeOrShow});
}

}  // namespace Tamrix
