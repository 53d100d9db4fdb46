// "tamrixrunner drive": the tools of "mcp" as commands, on a session that stays between them.

#include <QDir>
#include <QFile>

#include "base/filewriting.h"
#include "base/textescape.h"
#include "runner/commands/command.h"
#include "runner/commands/displayoption.h"
#include "runner/commands/drivesession.h"
#include "runner/mcp/protocol/json.h"
#include "runner/mcp/tools/arguments.h"
#include "runner/processes/shellwords.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

namespace {

struct DriveSettings {
    QString session;
    QString display;
    /// A tool, or what is done with the session.
    QString task;
    QStringList words;
};

Outcome<> readArguments(const CommandArguments& arguments, DriveSettings& settings) {
    settings.task = arguments.own.constFirst();
    settings.words = arguments.own.mid(1);
    const bool isTool = Mcp::findTool(Mcp::allTools(), settings.task) != nullptr;
    if (isTool || settings.task == QLatin1String("tools") || settings.task == QLatin1String("stop"))
        return {};
    return wrongUsage(QStringLiteral("there is no tool '%1'; \"tamrixrunner drive tools\" lists "
                                     "them, and \"stop\" ends a session")
                          .arg(settings.task));
}

int listTools() {
    QString text;
    for (const Mcp::Tool& tool : Mcp::allTools())
        text +=
            QStringLiteral("%1\n    %2\n").arg(Mcp::usageOf(tool), QLatin1String(tool.description));
    return show(text);
}

/// What is said relative to this process's folder, which the session does not know.
Outcome<Json::Value> argumentsFor(const Mcp::Tool& tool, QStringList words) {
    const QLatin1String name(tool.name);
    if (name == QLatin1String("start")) {
        // All words are the program's.
        if (!words.isEmpty() && words.first().contains(QLatin1Char('/')))
            words.first() = QDir().absoluteFilePath(words.first());
        words = QStringList(quotedShellWords(words));
    }
    Outcome<Json::Value> values = Mcp::argumentsOfWords(tool, words);
    if (values && values->isMember("suite"))
        (*values)["suite"] =
            Mcp::jsonText(QDir().absoluteFilePath(Mcp::textOf((*values)["suite"])));
    return values;
}

/// Takes "file=NAME" out of the words of a screenshot.
QString takeFileName(QStringList* words) {
    const QLatin1String prefix("file=");
    QString name = QStringLiteral("screenshot.png");
    for (int index = words->size() - 1; index >= 0; --index) {
        if (words->at(index).startsWith(prefix))
            name = words->takeAt(index).mid(prefix.size());
    }
    return name;
}

/// Stores the picture of a result, if it has one. Returns what is told of it.
Outcome<QString> storePicture(const Json::Value& content, const QString& fileName) {
    for (const Json::Value& part : content) {
        if (part["type"] != "image")
            continue;
        QFile file(fileName);
        QString reason;
        if (!file.open(QIODevice::WriteOnly) ||
            !writeAll(&file, QByteArray::fromBase64(Mcp::textOf(part["data"]).toLatin1()), &reason))
            return fail(FailureKind::Failed,
                        QStringLiteral("'%1' can't be written: %2")
                            .arg(fileName, reason.isEmpty() ? file.errorString() : reason));
        return QDir().absoluteFilePath(fileName) + QLatin1Char('\n');
    }
    return QString();
}

int showResult(const Json::Value& result, const QString& fileName) {
    QString text;
    for (const Json::Value& part : result["content"]) {
        if (part["type"] == "text")
            text += Mcp::textOf(part["text"]);
    }
    if (result["isError"].asBool()) {
        tell(text);
        return ExitFailure;
    }
    const Outcome<QString> stored = storePicture(result["content"], fileName);
    return stored ? show(escapedForTerminal(text + *stored)) : failWith(stored.error().text);
}

int callTool(const DriveSettings& settings) {
    const Mcp::Tool& tool = *Mcp::findTool(Mcp::allTools(), settings.task);
    QStringList words = settings.words;
    const QString fileName =
        settings.task == QLatin1String("screenshot") ? takeFileName(&words) : QString();
    const Outcome<Json::Value> arguments = argumentsFor(tool, words);
    if (!arguments)
        return failWith(arguments.error().text);
    // What is wrong with them is told without a session.
    if (const Outcome<Mcp::Arguments> read = Mcp::Arguments::read(tool, *arguments); !read)
        return failWith(read.error().text);
    const bool mayBegin =
        settings.task == QLatin1String("start") || settings.task == QLatin1String("run_case");
    Outcome<DriveSession> session =
        mayBegin ? DriveSession::connectOrStart(settings.session, settings.display)
                 : DriveSession::connect(settings.session);
    if (!session)
        return failWith(session.error().text);
    const Outcome<Json::Value> result = session->call(settings.task, *arguments);
    return result ? showResult(*result, fileName) : failWith(result.error().text);
}

int drive(const DriveSettings& settings) {
    if (settings.task == QLatin1String("tools"))
        return listTools();
    if (settings.task != QLatin1String("stop"))
        return callTool(settings);
    Outcome<DriveSession> session = DriveSession::connect(settings.session);
    if (!session)
        return failWith(session.error().text);
    const Outcome<> stopped = session->stop();
    return stopped ? ExitSuccess : failWith(stopped.error().text);
}

}  // namespace

Command driveCommand() {
    return makeCommand<DriveSettings>(
        {{"drive", "TOOL [ARGUMENT...]",
          "Uses a tool of mcp on a program that stays between commands; \"drive tools\" lists "
          "them, "
          "\"drive stop\" ends it.",
          1, CommandSyntax::anyNumber, CommandTail::Program},
         {displayOption(&DriveSettings::display, "auto"),
          {"session", "NAME", "Which session, when there are several; default %1.", "default",
           textTo(&DriveSettings::session)}},
         {},
         readArguments,
         drive});
}

}  // namespace Tamrix
