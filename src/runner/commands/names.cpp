// "tamrixrunner names": the map of object names of a suite.

#include <QFileInfo>

#include "base/textescape.h"
#include "interpreter/names/objectmaps.h"
#include "platform/objectmodel/mapfile.h"
#include "runner/applications/applications.h"
#include "runner/commands/command.h"
#include "runner/commands/displayoption.h"
#include "runner/commands/waitoption.h"
#include "runner/names/mapconversion.h"
#include "runner/names/namecheck.h"
#include "runner/names/unusednames.h"
#include "runner/processes/interrupt.h"
#include "runner/suites/suite.h"

namespace Tamrix {

namespace {

struct NamesSettings {
    enum class Task { Convert, Check, Unused };
    Task task = Task::Check;
    /// A suite, or the file of the map that is converted.
    QString subject;
    /// A program, or the file that a map is converted to; empty for Unused.
    QString object;
    // For Check.
    QString display;
    double waitSeconds = 0;
};

Outcome<> readArguments(const CommandArguments& arguments, NamesSettings& settings) {
    constexpr struct {
        const char* name;
        NamesSettings::Task task;
        int arguments;
        const char* takes;
    } tasks[] = {
        {"convert", NamesSettings::Task::Convert, 2, "the file of a map and a new one"},
        {"check", NamesSettings::Task::Check, 2, "a suite and a program"},
        {"unused", NamesSettings::Task::Unused, 1, "one suite"},
    };
    const QString& wanted = arguments.own.constFirst();
    for (const auto& task : tasks) {
        if (wanted != QLatin1String(task.name))
            continue;
        if (arguments.own.size() != 1 + task.arguments) {
            return wrongUsage(
                QStringLiteral("names %1 takes %2").arg(wanted, QLatin1String(task.takes)));
        }
        settings.task = task.task;
        settings.subject = arguments.own.at(1);
        settings.object = arguments.own.value(2);
        return {};
    }
    return wrongUsage(
        QStringLiteral("names knows the tasks convert, check and unused, not '%1'").arg(wanted));
}

QString linesText(const QStringList& lines) {
    QString text;
    for (const QString& line : lines)
        text += escapedForTerminal(line) + QLatin1Char('\n');
    return text;
}

int convert(const NamesSettings& settings) {
    if (QFileInfo::exists(settings.object))
        return failWith(QStringLiteral("File '%1' already exists").arg(settings.object));
    const Outcome<ConvertedMap> converted = convertMap(settings.subject, settings.object);
    if (!converted)
        return failWith(converted.error().text);
    if (const Outcome<> written = replaceFile(settings.object, converted->content); !written)
        return failWith(written.error().text);
    QStringList lines;
    for (const auto& [before, after] : converted->renamed)
        lines.append(QStringLiteral("%1 is %2 now").arg(before, after));
    return show(linesText(lines));
}

/// The suite's map, which must be there.
Outcome<std::unique_ptr<ObjectMap>> mapOf(const Suite& suite) {
    const QString path = suiteObjectMap(suite.directory);
    if (QFileInfo::exists(path))
        return openObjectMap(path);
    return fail(FailureKind::NotFound,
                QStringLiteral("The suite '%1' has no object map").arg(suite.directory));
}

int showUnused(const NamesSettings& settings) {
    const Outcome<Suite> suite = loadSuite(settings.subject);
    if (!suite)
        return failWith(suite.error().text);
    const Outcome<std::unique_ptr<ObjectMap>> map = mapOf(*suite);
    if (!map)
        return failWith(map.error().text);
    const Outcome<QStringList> unused = unusedNames(suite->directory, **map);
    if (!unused)
        return failWith(unused.error().text);
    const int shown = show(linesText(*unused));
    return shown != ExitSuccess || unused->isEmpty() ? shown : ExitFailure;
}

Outcome<NameCheck> checkWith(Applications& applications, const NamesSettings& settings) {
    const Outcome<Suite> suite = loadSuite(settings.subject);
    if (!suite)
        return fail(suite.error());
    const Outcome<std::unique_ptr<ObjectMap>> map = mapOf(*suite);
    if (!map)
        return fail(map.error());
    // What is wrong with the map needs no program.
    if (const Outcome<QStringList> names = (*map)->symbolicNames(); !names)
        return fail(names.error());
    if (const Outcome<> used = applications.useDisplay(settings.display); !used)
        return fail(used.error());
    const Outcome<ApplicationStart> start = resolveApplication(
        settings.object, {suite->directory, suite->config.fileName, suite->config.applications});
    if (!start)
        return fail(start.error());
    const Outcome<SharedPtr<Application>> application = applications.start(*start, -1);
    if (!application)
        return fail(application.error());
    letSettle(applications, settings.waitSeconds);
    return checkNames((*application)->access(), **map);
}

int check(const NamesSettings& settings) {
    Interrupt::install();
    Applications applications;
    const Outcome<NameCheck> checked = checkWith(applications, settings);
    applications.endAll();
    if (Interrupt::signalNumber() != 0)
        return Interrupt::exitCode(Interrupt::signalNumber());
    if (!checked)
        return failWith(checked.error().text);
    const QString summary =
        QStringLiteral("%1 of %2 names find one object")
            .arg(QString::number(checked->unique), QString::number(checked->names));
    const int shown = show(linesText(checked->findings + QStringList(summary)));
    return shown != ExitSuccess || checked->isGood() ? shown : ExitFailure;
}

int perform(const NamesSettings& settings) {
    switch (settings.task) {
        case NamesSettings::Task::Convert:
            return convert(settings);
        case NamesSettings::Task::Unused:
            return showUnused(settings);
        case NamesSettings::Task::Check:
            break;
    }
    return check(settings);
}

}  // namespace

Command namesCommand() {
    return makeCommand<NamesSettings>(
        {{"names", "convert MAP NEWMAP | check SUITE PROGRAM | unused SUITE",
          "Writes a map of object names in another form, looks its names up in a program, or "
          "prints those that nothing uses.",
          1, 3},
         {displayOption(&NamesSettings::display), waitOption(&NamesSettings::waitSeconds)},
         {},
         readArguments,
         perform});
}

}  // namespace Tamrix
