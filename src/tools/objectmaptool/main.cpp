// Runs the script of an object map and writes its names to standard output, in the form of a plain
// map. What is wrong with it goes to standard error.

#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <memory>

#include "base/filewriting.h"
#include "base/utf8file.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "interpreter/names/genericscriptedobjectmap.h"
#include "tools/objectmaptool/request.h"

namespace {

using namespace Tamrix;

Outcome<QString> scriptText(const MapRequest& request) {
    const QString path = request.readsStandardInput ? QStringLiteral("/dev/stdin") : request.path;
    const Outcome<Utf8Text> text = readUtf8File(path);
    if (!text) {
        return fail(FailureKind::Failed, QStringLiteral("The object map '%1' can't be read: %2")
                                             .arg(request.path, text.error().text));
    }
    if (text->faultyLine > 0) {
        return fail(FailureKind::BadArgument,
                    QStringLiteral("%1, line %2: no UTF-8 text")
                        .arg(request.path, QString::number(text->faultyLine)));
    }
    return text->text;
}

/// The names in the form of a plain map.
Outcome<QString> entryMap(const MapRequest& request) {
    // 1. The script's language, by its suffix.
    const auto* const language = ScriptLanguageInformation::forFile(QFileInfo(request.path));
    if (!language) {
        return fail(FailureKind::BadArgument,
                    QStringLiteral("'%1' is no script in a known language").arg(request.path));
    }
    const Outcome<QString> text = scriptText(request);
    if (!text)
        return text;
    const ScriptLanguagePlugin plugin(language->pluginName);
    if (!plugin.lastErrorMessage().isEmpty())
        return fail(FailureKind::Failed, plugin.lastErrorMessage());
    // 2. An interpreter as that of a test case, whose imports find the same files.
    const std::unique_ptr<Interpreter> interpreter(plugin.interpreter(nullptr));
    const std::unique_ptr<ScriptedObjectMap> map(plugin.scriptedObjectMap(request.path));
    auto* const scripted = dynamic_cast<GenericScriptedObjectMap*>(map.get());
    if (!interpreter || !scripted) {
        return fail(FailureKind::Failed,
                    QStringLiteral("The plug-in for %1 has no maps of names").arg(language->name));
    }
    Interpreter::setSelf(interpreter.get());
    interpreter->initTestFunctions(nullptr);
    interpreter->initUtilFunctions();
    interpreter->addDefaultSearchPaths(QFileInfo(QFileInfo(request.path).path()));
    interpreter->setScriptArguments(request.path, {});
    // 3. Its names.
    const Outcome<QMap<QString, QString>> realNames = scripted->toRealNameMapping(*text);
    if (!realNames)
        return fail(realNames.error());
    return ObjectMap::serialized(
               GenericScriptedObjectMap::toSimplifiedRealNameMapping(*realNames)) +
           QLatin1Char('\n');
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    // What the script prints is not part of the answer.
    const int answer = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    const Outcome<MapRequest> request = parseMapRequest(QCoreApplication::arguments().mid(1));
    const Outcome<QString> names = request ? entryMap(*request) : fail(request.error());
    QString error = names ? QString() : names.error().text;
    if (names)
        writeAll(answer, names->toUtf8(), &error);
    if (!error.isEmpty())
        std::fprintf(stderr, "%s\n", qUtf8Printable(error));
    // Nobody waits for the end of an interpreter.
    std::fflush(nullptr);
    ::_exit(error.isEmpty() ? 0 : 1);
}
