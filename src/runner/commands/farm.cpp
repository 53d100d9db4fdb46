// "tamrixrunner farm": a suite on many machines, by a program that people have for this.

#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <algorithm>

#include "base/textescape.h"
#include "runner/commands/caserun.h"
#include "runner/commands/command.h"
#include "runner/commands/reports.h"
#include "runner/farm/batchscripts.h"
#include "runner/suites/suite.h"

namespace Tamrix {

namespace {

/// Shards for each worker: with several, one that has less to do takes more of them, and what a
/// lost machine takes along is little.
constexpr int shardsPerWorker = 4;
constexpr int mostWorkers = 10000;

struct FarmRequest : CaseRunSettings {
    BatchEngine engine = BatchEngine::Parallel;
    QString engineName;
    int workers = 0;
    QString hosts;
    bool printsScript = false;
    bool resumes = false;
};

/// Options that mean the farm as a whole; all others go to the shards as they are.
struct OwnOption {
    const char* name;
    bool hasValue;
};

const OwnOption ownOptions[] = {
    {"engine", true},  {"workers", true},  {"hosts", true},       {"print-script", false},
    {"resume", false}, {"report", true},   {"result-dir", true},  {"history", true},
    {"quiet", false},  {"verbose", false}, {"no-console", false},
};

/// What the shards are asked for: the command line from the suite on, but for our own options.
QStringList shardArguments(const QStringList& commandLine) {
    QStringList left;
    for (int index = 2; index < commandLine.size(); ++index) {
        const QString& word = commandLine.at(index);
        if (word == QLatin1String("--"))
            break;
        const auto own = std::find_if(
            std::begin(ownOptions), std::end(ownOptions), [&](const OwnOption& option) {
                const QString name = QLatin1String("--") + QLatin1String(option.name);
                return word == name ||
                       (option.hasValue && word.startsWith(name + QLatin1Char('=')));
            });
        if (own == std::end(ownOptions))
            left += word;
        else if (own->hasValue && !word.contains(QLatin1Char('=')))
            ++index;
    }
    return left;
}

Outcome<> readEngine(const QStringList& values, FarmRequest& request) {
    request.engineName = values.constLast();
    if (request.engineName == QLatin1String("slurm"))
        request.engine = BatchEngine::Slurm;
    else if (request.engineName != QLatin1String("parallel"))
        return wrongUsage(
            QStringLiteral("--engine takes parallel or slurm, not '%1'").arg(values.constLast()));
    return {};
}

Outcome<> readWorkers(const QStringList& values, FarmRequest& request) {
    bool isNumber = false;
    request.workers = values.constLast().toInt(&isNumber);
    if (isNumber && request.workers >= 1 && request.workers <= mostWorkers)
        return {};
    return wrongUsage(QStringLiteral("--workers takes a number from 1 to %1, not '%2'")
                          .arg(QString::number(mostWorkers), values.constLast()));
}

Outcome<> readArguments(const CommandArguments& arguments, FarmRequest& request) {
    if (request.engineName.isEmpty() || request.workers == 0)
        return wrongUsage(QStringLiteral("farm needs --engine and --workers"));
    if (request.resultDirectory.isEmpty())
        return wrongUsage(QStringLiteral("farm needs --result-dir, which all machines share"));
    if (request.farm.shard)
        return wrongUsage(QStringLiteral("farm makes the shards itself"));
    if (request.debugger != DebuggerDialogue::None)
        return wrongUsage(QStringLiteral("nobody can debug many machines at once"));
    if (!request.hosts.isEmpty() && request.engine == BatchEngine::Slurm)
        return wrongUsage(QStringLiteral("Slurm knows its machines; --hosts is for GNU parallel"));
    return readCaseRunArguments(arguments, request);
}

/// The number of machines in a file; fails when it can't be read or has none.
Outcome<int> countHosts(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return fail(
            FailureKind::Failed,
            QStringLiteral("the hosts '%1' can't be read: %2").arg(path, file.errorString()));
    int count = 0;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const QByteArray host = line.trimmed();
        count += !host.isEmpty() && !host.startsWith('#');
    }
    if (count == 0)
        return fail(FailureKind::BadArgument,
                    QStringLiteral("the file '%1' names no host").arg(path));
    return count;
}

/// All shards read the same times, whatever happens to the history meanwhile.
Outcome<> freezeHistory(const QString& history, const QString& folder) {
    if (!QDir().mkpath(folder))
        return fail(FailureKind::Failed,
                    QStringLiteral("the folder '%1' can't be made").arg(folder));
    const QDir source(history);
    const QStringList names = source.entryList({QStringLiteral("*.jsonl")}, QDir::Files);
    for (const QString& name : names) {
        const QString target = folder + QLatin1Char('/') + name;
        QFile::remove(target);
        if (!QFile::copy(source.filePath(name), target))
            return fail(
                FailureKind::Failed,
                QStringLiteral("'%1' can't be copied to '%2'").arg(source.filePath(name), target));
    }
    return {};
}

Outcome<> writeScript(const QString& folder, const BatchScript& script) {
    QSaveFile file(folder + QLatin1Char('/') + script.name);
    if (file.open(QIODevice::WriteOnly) && file.write(script.text.toUtf8()) >= 0 &&
        file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                            QFileDevice::ExeOwner | QFileDevice::ReadGroup |
                            QFileDevice::ReadOther) &&
        file.commit())
        return {};
    return fail(
        FailureKind::Failed,
        QStringLiteral("'%1' can't be written: %2").arg(file.fileName(), file.errorString()));
}

/// What earlier shards in the folder have left would be taken for results of this run.
void removeShards(const QString& folder) {
    const QDir directory(folder);
    QFile::remove(directory.filePath(QStringLiteral("joblog")));
    const QStringList shards =
        directory.entryList({QStringLiteral("shard-*")}, QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& shard : shards) {
        if (QFileInfo::exists(directory.filePath(shard) + QLatin1String("/journal.jsonl")))
            QDir(directory.filePath(shard)).removeRecursively();
    }
}

QStringList mergeArguments(const FarmRequest& request) {
    QStringList arguments;
    // The first is the journal among the results.
    for (const QString& report : request.reports) {
        arguments += QStringLiteral("--to");
        arguments += report;
    }
    if (request.hasConsole)
        arguments += QStringList{QStringLiteral("--to"), QStringLiteral("console:-")};
    if (!request.farm.history.isEmpty())
        arguments += QStringList{QStringLiteral("--history"), request.farm.history};
    return arguments;
}

Outcome<BatchRun> batchRun(const FarmRequest& request, const Suite& suite) {
    BatchRun run;
    run.engine = request.engine;
    run.name = displayName({suite.name, {}, {}});
    run.runner = QCoreApplication::applicationFilePath();
    run.workingDirectory = QDir::currentPath();
    run.directory = request.resultDirectory;
    run.workers = request.workers;
    const int cases =
        std::max(1, request.cases.isEmpty() ? suite.cases.size() : request.cases.size());
    run.shards = std::min(cases, request.workers * shardsPerWorker);
    run.resumes = request.resumes;
    if (!request.hosts.isEmpty()) {
        run.hosts = QFileInfo(request.hosts).absoluteFilePath();
        const Outcome<int> count = countHosts(run.hosts);
        if (!count)
            return fail(count.error());
        run.hostCount = *count;
    }
    run.runArguments = shardArguments(QCoreApplication::arguments());
    if (!request.farm.history.isEmpty()) {
        run.runArguments += QStringList{QStringLiteral("--history"),
                                        request.resultDirectory + QLatin1String("/history")};
    }
    run.scriptArguments = request.scriptArguments;
    run.mergeArguments = mergeArguments(request);
    return run;
}

int runFarm(const FarmRequest& request) {
    const Outcome<Suite> suite = loadSuite(request.suite);
    if (!suite)
        return failWith(suite.error().text);
    if (const auto cases = selectCases(*suite, request.cases); !cases)
        return failWith(cases.error().text);
    const Outcome<BatchRun> run = batchRun(request, *suite);
    if (!run)
        return failWith(run.error().text);
    const QList<BatchScript> scripts = batchScripts(*run);
    if (request.printsScript) {
        QString text;
        for (const BatchScript& script : scripts)
            text += QStringLiteral("# %1/%2\n%3\n").arg(run->directory, script.name, script.text);
        return show(text);
    }
    const QString engine = request.engine == BatchEngine::Slurm ? QStringLiteral("sbatch")
                                                                : QStringLiteral("parallel");
    if (QStandardPaths::findExecutable(engine).isEmpty()) {
        return failWith(QStringLiteral("the engine %1 needs the program '%2', which is not in PATH")
                            .arg(request.engineName, engine));
    }
    if (!QDir().mkpath(run->directory))
        return failWith(QStringLiteral("the folder '%1' can't be made").arg(run->directory));
    if (!request.resumes) {
        removeShards(run->directory);
        if (!request.farm.history.isEmpty()) {
            const Outcome<> frozen =
                freezeHistory(request.farm.history, run->directory + QLatin1String("/history"));
            if (!frozen)
                return failWith(frozen.error().text);
        }
    }
    for (const BatchScript& script : scripts) {
        if (const Outcome<> written = writeScript(run->directory, script); !written)
            return failWith(written.error().text);
    }
    // The script is what this process was started for: signals, terminal and exit code are its own.
    const QByteArray path =
        QFile::encodeName(run->directory + QLatin1Char('/') + scripts.constFirst().name);
    ::execl("/bin/sh", "sh", path.constData(), nullptr);
    return failWith(QStringLiteral("'/bin/sh' can't be started: %1").arg(qt_error_string(errno)));
}

/// The options of "run" for the request of a farm.
std::vector<Option<FarmRequest>> farmRequestOptions() {
    std::vector<Option<FarmRequest>> options = {
        {"engine", "parallel|slurm", "The program that runs the shards: GNU parallel or Slurm.",
         nullptr, readEngine},
        {"workers", "N", "So many shards at a time.", nullptr, readWorkers},
        {"hosts", "FILE", "Machines for GNU parallel, a login a line; this one without.", nullptr,
         textTo(&FarmRequest::hosts)},
        {"print-script", nullptr, "Prints the scripts and starts nothing.", nullptr,
         setTo(&FarmRequest::printsScript, true)},
        {"resume", nullptr, "Runs only what an earlier farm in this folder has not finished.",
         nullptr, setTo(&FarmRequest::resumes, true)}};
    for (const Option<CaseRunSettings>& option : runOptions()) {
        options.push_back({option.name, option.valueName, option.help, option.defaultValue,
                           [read = option.read](const QStringList& values, FarmRequest& request) {
                               return read(values, request);
                           }});
    }
    return options;
}

}  // namespace

Command farmCommand() {
    return makeCommand<FarmRequest>(
        {{"farm", "SUITE [CASE...]",
          "Runs the suite's test cases on many machines, with an engine that is there.", 1,
          CommandSyntax::anyNumber, CommandTail::ScriptArguments},
         farmRequestOptions(),
         exclusiveRunOptions(),
         readArguments,
         runFarm});
}

}  // namespace Tamrix
