#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "base/wholetext.h"
#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/inputfunctions.h"
#include "interpreter/generic/runneraccess.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

namespace {

const QString s_gestures = QStringLiteral("gestures");
const QString s_shared = QStringLiteral("shared");

/// The next folder "shared" on the way up, which may stand beside one of the folders on it; empty
/// when there is none.
QString sharedFolderAbove(QDir folder) {
    while (true) {
        if (folder.dirName() == s_shared)
            return folder.path();
        if (folder.exists(s_shared))
            return folder.filePath(s_shared);
        if (!folder.cdUp())
            return {};
    }
}

/// The folders that gestures are looked for in, in order.
QStringList gestureFolders(RunnerInterface* runner) {
    QStringList folders;
    // 1. Beside the test case's script.
    if (runner)
        folders.append(QFileInfo(runner->testCasePath()).path() + '/' + s_gestures);
    const QString file = Debugger::currentFile();
    if (file.isNull())
        return folders;
    // 2. Beside the script file that runs.
    const QDir scriptFolder(QDir::cleanPath(QFileInfo(file).absolutePath()));
    folders.append(scriptFolder.filePath(s_gestures));
    // 3. In what the test cases share.
    const QString shared = sharedFolderAbove(scriptFolder);
    if (!shared.isEmpty())
        folders.append(shared + '/' + s_gestures);
    return folders;
}

}  // namespace

QString readGestureByName(const QString& name, QString* error) {
    for (const QString& folder : gestureFolders(Interpreter::currentRunner())) {
        QFile file(folder + '/' + name + ".gesture");
        if (file.open(QIODevice::ReadOnly))
            return wholeUtf8(file.readAll());
    }
    *error = "Couldn't open file " + name;
    return {};
}

void readGesture(ScriptContext* context) {
    if (context->argumentCount() != 1 || !context->argument(0)->isString()) {
        context->setError("readGesture() requires a file name argument");
        return;
    }
    if (!runnerFor("readGesture"))
        return;
    QString error;
    const QString text = readGestureByName(context->argument(0)->toString(), &error);
    if (!error.isEmpty()) {
        context->setError(error);
        return;
    }
    Inspector* const inspector = Inspector::self();
    const Class* const builder = inspector->classByName(QStringLiteral("GestureBuilder"));
    if (!builder) {
        context->setError("Loading GestureBuilder");
        return;
    }
    ObjectList arguments;
    arguments.push_back(inspector->createObject(text));
    if (const Outcome<SharedPtr<Object>> gesture = builder->construct(arguments))
        context->setObjectResult(*gesture);
    else
        context->setError("GestureBuilder( xml )");
}

}  // namespace Tamrix
