#include "interpreter/generic/resourcefunctions.h"

#include <QFile>
#include <QFileInfo>
#include <memory>

#include "base/standardpath.h"
#include "base/wholetext.h"
#include "interpreter/bridge/currentcontextsaver.h"
#include "shared/resources/testresource.h"

namespace Tamrix {

bool findFile(ScriptContext* context) {
    if (context->argumentCount() != 2 || !context->argument(0)->isString() ||
        !context->argument(1)->isString()) {
        context->setError("findFiles() requires two string arguments");
        return false;
    }
    const QString type = context->argument(0)->toString();
    const QString name = context->argument(1)->toString();
    if (type != QLatin1String("scripts") && type != QLatin1String("testdata")) {
        context->setError("Unknown file type. Possible options are: scripts, testdata");
        return false;
    }
    const QString path = findTestSuiteFile(name, type);
    if (path.isEmpty()) {
        context->setError("Can't find file '" + name + "' of type '" + type + "'");
        return false;
    }
    context->setStringResult(path);
    return true;
}

void sourceFile(ScriptContext* context) {
    // 1. The file's text.
    if (context->argumentCount() != 1 || !context->argument(0)->isString()) {
        context->setError("source(fileName)");
        return;
    }
    const QString name = context->argument(0)->toString();
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        context->setError("Couldn't open file " + name);
        return;
    }
    const QString text = wholeUtf8(file.readAll());
    // 2. Nothing to run is no error.
    if (text.isEmpty())
        return;
    // 3. It runs in a context of its own,
    const std::unique_ptr<ScriptContext> subContext(context->createSubContext());
    const CurrentContextSaver saver;
    ScriptContext::setCurrent(subContext.get());
    // 4. whose error becomes that of the caller.
    QString error;
    if (!subContext->evaluate(text, realPath(QFileInfo(name).absoluteFilePath())))
        error = subContext->errorMessage();
    context->clearError();
    context->setError(error);
}

}  // namespace Tamrix
