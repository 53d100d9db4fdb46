#include "runner/applications/applicationstart.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include "base/environment.h"
#include "runner/processes/shellwords.h"
#include "wire/protocol.h"

namespace Tamrix {

namespace {

const ConfiguredApplication* findConfigured(const ApplicationPlaces& places, const QString& name) {
    for (const ConfiguredApplication& application : places.configured) {
        if (application.name == name)
            return &application;
    }
    return nullptr;
}

/// The file at a path that may be relative to one of the folders; the first that exists. Empty when
/// none does, with the paths that were tried appended to `tried`.
QString findFile(const QString& path, const QStringList& folders, QStringList* tried) {
    for (const QString& folder : folders) {
        const QString file = QDir::cleanPath(QDir(folder).absoluteFilePath(path));
        if (QFileInfo::exists(file))
            return file;
        if (!tried->contains(file))
            tried->append(file);
    }
    return {};
}

/// Why a file can't be executed, empty when it can.
QString executionProblem(const QString& file) {
    const QFileInfo info(file);
    if (info.isDir())
        return QStringLiteral("'%1' is a folder, not a program").arg(file);
    if (!info.isExecutable())
        return QStringLiteral("'%1' can't be executed: no permission").arg(file);
    return {};
}

/// The file of a program given by path or name. On failure `*error` tells where it was looked for,
/// behind the places in `tried`.
QString findProgram(const QString& program, const QStringList& folders, QStringList tried,
                    QString* error) {
    QString file;
    if (program.contains(QLatin1Char('/'))) {
        file = findFile(program, folders, &tried);
    } else {
        file = QStandardPaths::findExecutable(program);
        tried.append(QStringLiteral("the folders of PATH (%1)")
                         .arg(Environment::getVariable(QStringLiteral("PATH"))));
    }
    if (file.isEmpty())
        *error = QStringLiteral("the program '%1' was not found; looked for it in %2")
                     .arg(program, tried.join(QLatin1String(", ")));
    else
        *error = executionProblem(file);
    return file;
}

}  // namespace

QString ApplicationStart::commandLine() const {
    QStringList words{quotedShellWord(program.program)};
    for (const QString& argument : program.arguments)
        words.append(quotedShellWord(argument));
    return words.join(QLatin1Char(' '));
}

ApplicationStart resolveApplication(const QString& text, const ApplicationPlaces& places,
                                    QString* error) {
    QStringList folders{QDir::currentPath()};
    if (!places.suiteDirectory.isEmpty())
        folders.append(places.suiteDirectory);

    // A name or path with blanks needs no quotes when it is all there is.
    QStringList words{text};
    QStringList ignored;
    const bool isPath =
        text.contains(QLatin1Char('/')) && !findFile(text, folders, &ignored).isEmpty();
    if (!isPath && !findConfigured(places, text))
        words = splitShellWords(text, error);
    if (words.isEmpty() && error->isEmpty())
        *error = QStringLiteral("no program is named");
    if (!error->isEmpty())
        return {};

    ApplicationStart start;
    const QString name = words.takeFirst();
    // 1. An application of config.xml, whose paths count from the suite's folder.
    if (const ConfiguredApplication* known = findConfigured(places, name)) {
        start.name = name;
        start.program.program = findProgram(known->path, {places.suiteDirectory}, {}, error);
        if (!error->isEmpty())
            error->prepend(QStringLiteral("application '%1' of %2: ").arg(name, places.configFile));
        start.program.arguments = known->arguments + words;
        // The suite's folder itself when the file names none.
        start.program.workingDirectory =
            QDir::cleanPath(QDir(places.suiteDirectory).absoluteFilePath(known->workingDirectory));
        start.program.environment = known->environment;
        start.preloadsAgent = known->preloadsAgent;
        return start;
    }
    // 2. and 3. A path or a program in PATH.
    QStringList tried;
    if (!places.configFile.isEmpty())
        tried.append(QStringLiteral("the applications of %1").arg(places.configFile));
    start.program.program = findProgram(name, folders, tried, error);
    start.name = QFileInfo(start.program.program).fileName();
    start.program.arguments = words;
    return start;
}

ProgramEnvironment agentEnvironment(const QString& socketPath, const QString& token,
                                    bool preloadsAgent) {
    const QString prefix = Environment::getVariable(QLatin1String(prefixVariable));
    // Ours in front of what is there, since the first plug-in of a name wins.
    const auto withOthers = [](const QString& ours, const QString& name, QLatin1Char separator,
                               bool isInFront) {
        const QString others = Environment::getVariable(name);
        if (others.isEmpty())
            return ours;
        return isInFront ? ours + separator + others : others + separator + ours;
    };
    const QString pluginPath = QStringLiteral("QT_PLUGIN_PATH");
    const QString genericPlugins = QStringLiteral("QT_QPA_GENERIC_PLUGINS");
    const QString preload = QStringLiteral("LD_PRELOAD");
    ProgramEnvironment environment = {
        {QLatin1String(prefixVariable), prefix},
        {QLatin1String(Wire::connectVariable), socketPath},
        {QLatin1String(Wire::tokenVariable), token},
        {pluginPath,
         withOthers(prefix + QLatin1String("/lib/qtplugins"), pluginPath, QLatin1Char(':'), true)},
        {genericPlugins,
         withOthers(QStringLiteral("tamrixagent"), genericPlugins, QLatin1Char(','), false)}};
    if (preloadsAgent) {
        environment.append({preload, withOthers(prefix + QLatin1String("/lib/libtamrixhook.so"),
                                                preload, QLatin1Char(':'), true)});
    }
    return environment;
}

}  // namespace Tamrix
