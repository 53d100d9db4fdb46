#include "runner/applications/applicationstart.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include "base/environment.h"
#include "runner/processes/shellwords.h"

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

Outcome<> checkExecutable(const QString& file) {
    const QFileInfo info(file);
    if (info.isDir())
        return fail(FailureKind::Refused,
                    QStringLiteral("'%1' is a folder, not a program").arg(file));
    if (!info.isExecutable())
        return fail(FailureKind::Refused,
                    QStringLiteral("'%1' can't be executed: no permission").arg(file));
    return {};
}

/// The file of a program given by path or name. A failure tells where it was looked for, behind the
/// places in `tried`.
Outcome<QString> findProgram(const QString& program, const QStringList& folders,
                             QStringList tried) {
    QString file;
    if (program.contains(QLatin1Char('/'))) {
        file = findFile(program, folders, &tried);
    } else {
        file = QStandardPaths::findExecutable(program);
        tried.append(QStringLiteral("the folders of PATH (%1)")
                         .arg(Environment::getVariable(QStringLiteral("PATH"))));
    }
    if (file.isEmpty()) {
        return fail(FailureKind::NotFound,
                    QStringLiteral("the program '%1' was not found; looked for it in %2")
                        .arg(program, tried.join(QLatin1String(", "))));
    }
    const Outcome<> executable = checkExecutable(file);
    if (!executable)
        return fail(executable.error());
    return file;
}

/// An application of config.xml, whose paths count from the suite's folder.
Outcome<ApplicationStart> startOf(const ConfiguredApplication& known,
                                  const ApplicationPlaces& places, const QStringList& arguments) {
    const Outcome<QString> file = findProgram(known.path, {places.suiteDirectory}, {});
    if (!file) {
        Failure failure = file.error();
        failure.text.prepend(
            QStringLiteral("application '%1' of %2: ").arg(known.name, places.configFile));
        return fail(failure);
    }
    ApplicationStart start;
    start.name = known.name;
    start.program.program = *file;
    start.program.arguments = known.arguments + arguments;
    // The suite's folder itself when the file names none.
    start.program.workingDirectory =
        QDir::cleanPath(QDir(places.suiteDirectory).absoluteFilePath(known.workingDirectory));
    start.program.environment = known.environment;
    start.launcher = known.launcher;
    return start;
}

}  // namespace

QString ApplicationStart::commandLine() const {
    return quotedShellWords(QStringList{program.program} + program.arguments);
}

Outcome<ApplicationStart> resolveApplication(const QString& text, const ApplicationPlaces& places) {
    QStringList folders{QDir::currentPath()};
    if (!places.suiteDirectory.isEmpty())
        folders.append(places.suiteDirectory);

    // A name or path with blanks needs no quotes when it is all there is.
    QStringList words{text};
    QStringList ignored;
    const bool isPath =
        text.contains(QLatin1Char('/')) && !findFile(text, folders, &ignored).isEmpty();
    if (!isPath && !findConfigured(places, text)) {
        const Outcome<QStringList> split = splitShellWords(text);
        if (!split)
            return fail(split.error());
        words = *split;
    }
    if (words.isEmpty())
        return fail(FailureKind::BadArgument, QStringLiteral("no program is named"));

    // 1. An application of config.xml comes first.
    const QString name = words.takeFirst();
    if (const ConfiguredApplication* known = findConfigured(places, name))
        return startOf(*known, places, words);

    // 2. and 3. A path or a program in PATH.
    QStringList tried;
    if (!places.configFile.isEmpty())
        tried.append(QStringLiteral("the applications of %1").arg(places.configFile));
    const Outcome<QString> file = findProgram(name, folders, tried);
    if (!file)
        return fail(file.error());
    ApplicationStart start;
    start.program.program = *file;
    start.name = QFileInfo(*file).fileName();
    start.program.arguments = words;
    return start;
}

}  // namespace Tamrix
