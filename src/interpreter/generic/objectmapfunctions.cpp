#include "interpreter/generic/objectmapfunctions.h"

#include <QFileInfo>

#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/objectarguments.h"
#include "interpreter/names/objectmaps.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectmap.h"
#include "shared/resources/testresource.h"

namespace Tamrix {

namespace {

/// The only argument, an object or a name; null with the error set when it is neither.
SharedPtr<ScriptArgument> nameOrObject(ScriptContext* context, const char* function) {
    if (context->argumentCount() == 1 && isObjectOrName(context->argument(0)))
        return context->argument(0);
    context->setError(
        QStringLiteral("%1() expected object name or reference").arg(QLatin1String(function)));
    return {};
}

/// Tells which failure there was, when there was one, as the error.
void setText(ScriptContext* context, const QString& text) {
    if (text.isEmpty() && !Inspector::self()->lastError().isEmpty())
        context->setError(Inspector::self()->lastError());
    else
        context->setStringResult(text);
}

}  // namespace

void objectMapLoad(ScriptContext* context) {
    if (context->argumentCount() != 1) {
        context->setError("load() requires a file name argument");
        return;
    }
    if (!context->argument(0)->isString()) {
        context->setError("load() expression has to be of type string");
        return;
    }
    // Maps are scripts of the suite.
    const QString name = context->argument(0)->toString();
    const QString path =
        QFileInfo(name).isAbsolute() ? name : findTestSuiteFile(name, QStringLiteral("scripts"));
    if (!QFileInfo(path).isFile()) {
        context->setError("File '" + name + "' couldn't be found.");
        return;
    }
    const Outcome<> loaded = useObjectMap(QFileInfo(path).absoluteFilePath());
    if (!loaded)
        context->setError(loaded.error().text);
}

void objectMapRealName(ScriptContext* context) {
    const SharedPtr<ScriptArgument> argument = nameOrObject(context, "realName");
    if (!argument)
        return;
    Inspector::self()->setLastError(QString());
    setText(context, argument->isObject()
                         ? ObjectMap::self()->realName(argument->toObject())
                         : ObjectMap::self()->realName(serializeObjectName(argument)));
}

void objectMapSymbolicName(ScriptContext* context) {
    const SharedPtr<ScriptArgument> argument = nameOrObject(context, "symbolicName");
    if (!argument)
        return;
    Inspector::self()->setLastError(QString());
    setText(context, argument->isObject()
                         ? ObjectMap::self()->symbolicName(argument->toObject())
                         : ObjectMap::self()->symbolicName(serializeObjectName(argument)));
}

void objectMapSymbolicNames(ScriptContext* context) {
    if (context->argumentCount() != 0) {
        context->setError("symbolicNames() does not take any arguments");
        return;
    }
    const Outcome<QStringList> names = ObjectMap::self()->symbolicNames();
    if (!names) {
        context->setError(names.error().text);
        return;
    }
    std::vector<SharedPtr<ScriptArgument>> texts;
    for (const QString& name : *names)
        texts.push_back(context->createString(name));
    context->setResult(context->createList(texts));
}

void objectMapAdd(ScriptContext* context) {
    if (context->argumentCount() != 1 || !context->argument(0)->isObject() ||
        !context->argument(0)->toObject()) {
        context->setError("add expected an object reference argument");
        return;
    }
    const SharedPtr<Object> object = context->argument(0)->toObject();
    const Outcome<QString> name = ObjectMap::self()->add(object);
    if (!name) {
        context->setError(name.error().text);
        return;
    }
    // Whoever records or shows the application may want to know; most know no such request.
    Inspector* const inspector = Inspector::self();
    const Failure before = inspector->lastFailure();
    inspector->nativeRequest(QStringLiteral("addToObjectMap"),
                             {*name, ObjectMap::self()->realName(object)});
    inspector->keep(before);
    context->setStringResult(*name);
}

}  // namespace Tamrix
