#include <QtGlobal>

#include "interpreter/bridge/actionrecord.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/objectarguments.h"
#include "interpreter/generic/objectfunctions.h"
#include "interpreter/generic/runneraccess.h"
#include "interpreter/objects/namelookup.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/objectmap.h"

namespace Tamrix {

namespace {

/// What a wait for an object ends with.
void setLookupResult(ScriptContext* context, const Outcome<SharedPtr<Object>>& object) {
    if (object)
        context->setObjectResult(*object);
    else
        context->setError(object.error().text, ScriptContext::LookupError);
}

/// Waits until the object of a name is there and ready.
Outcome<SharedPtr<Object>> waitForName(RunnerInterface* runner,
                                       const SharedPtr<ScriptArgument>& name, const char* function,
                                       int timeout) {
    const QString text = serializeObjectName(name);
    return lookUp(text, QLatin1String(function),
                  [&] { return outcomeOf(runner->waitForObjectByName(text, true, timeout)); });
}

/// An item of a view: its text, or row and column.
struct WantedItem {
    QString text;
    int row = -1;
    int column = -1;
};

/// What a failed wait for an item says when the runner has said nothing.
QString itemNotFoundText(const WantedItem& item, const SharedPtr<ScriptArgument>& view,
                         const SharedPtr<Object>& object) {
    // The two blanks in front of "in row" are meant: the item's text is missing between them.
    QString text = "Item " + item.text;
    if (item.text.isNull())
        text += QStringLiteral(" in row %1 and column %2")
                    .arg(QString::number(item.row), QString::number(item.column));
    if (view->isObject())
        text += " in object " + object->realName() + " of type " + object->className();
    else
        text += " in object " + serializeObjectName(view);
    return text + " not found or not ready.";
}

/// The list that starts with the first match of a name and goes on with its further occurrences.
ObjectList allOccurrences(ObjectName name, const SharedPtr<Object>& first) {
    Inspector* const inspector = Inspector::self();
    ObjectList objects;
    objects.push_back(first);
    // Objects of Java count from 1, so the first of them stands twice: this is meant.
    const Class* const javaObject = inspector->classByName(QStringLiteral("java_lang_Object"));
    int occurrence = javaObject && first->isA(javaObject) ? 1 : 2;
    while (true) {
        name.setProperty(QStringLiteral("occurrence"), QString::number(occurrence++));
        const SharedPtr<Object> object = inspector->findObject(name.qualifiedName());
        if (!object)
            return objects;
        objects.push_back(object);
    }
}

}  // namespace

void waitForObject(ScriptContext* context) {
    const ActionRecord record(context, "waitForObject");
    // 1. The arguments.
    const SharedPtr<ScriptArgument> wanted = context->argument(0);
    if (!isObjectOrName(wanted) || context->argumentCount() > 2) {
        context->setError("waitForObject() requires an object or an object name argument");
        return;
    }
    int timeout = 0;
    if (!readTimeout(context, context->argument(1), &timeout))
        return;
    // 2. The runner waits.
    RunnerInterface* const runner = runnerFor("waitForObject");
    if (!runner)
        return;
    const Outcome<SharedPtr<Object>> found =
        wanted->isObject() ? outcomeOf(runner->waitForObject(wanted->toObject(), true, timeout))
                           : waitForName(runner, wanted, "waitForObject", timeout);
    // 3. The object, or why there is none.
    setLookupResult(context, found);
}

void waitForObjectExists(ScriptContext* context) {
    const ActionRecord record(context, "waitForObjectExists");
    const int count = context->argumentCount();
    if (count < 1 || count > 2) {
        context->setError("Function waitForObjectExists() requires 1 or 2 arguments");
        return;
    }
    const SharedPtr<ScriptArgument> name = context->argument(0);
    if (!isStringOrObjectName(name)) {
        context->setError("waitForObjectExists() requires an object name argument");
        return;
    }
    int timeout = TestSettingsType::s_waitForObjectTimeout;
    if (count == 2) {
        if (!context->argument(1)->isNumber()) {
            context->setError("Invalid type of timeout value, must be a number");
            return;
        }
        timeout = intOf(context->argument(1));
        if (timeout < 0) {
            context->setError("2nd argument must be a positive value");
            return;
        }
    }
    RunnerInterface* const runner = runnerFor("waitForObjectExists");
    if (!runner)
        return;
    const QString text = serializeObjectName(name);
    setLookupResult(context, lookUp(text, QStringLiteral("waitForObjectExists"), [&] {
                        return outcomeOf(runner->waitForObjectExists(text, true, timeout));
                    }));
}

void waitForObjectItem(ScriptContext* context) {
    const ActionRecord record(context, "waitForObjectItem");
    // The view, then the item as text or as row and column, then the time-out.
    const SharedPtr<ScriptArgument> view = context->argument(0);
    const SharedPtr<ScriptArgument> first = context->argument(1);
    const SharedPtr<ScriptArgument> second = context->argument(2);
    // Where a text may be a number as well, two of them are a place.
    const bool byPlace = first && first->isInteger() && second && second->isInteger();
    const bool byText = !byPlace && first && first->isString();
    // By its name, a time-out stands behind the column that an item's text has not.
    const bool isPlaced = context->hasNamedArguments() || (!second && context->argument(3));
    const int timeoutIndex = byText && !isPlaced ? 2 : 3;
    if (!isObjectOrName(view) || (!byText && !byPlace) || (byText && isPlaced && second) ||
        context->argumentCount() > timeoutIndex + 1) {
        context->setError(
            "waitForObjectItem() requires an object name (or reference) and either an item "
            "argument or row and column arguments");
        return;
    }
    int timeout = 0;
    if (!readTimeout(context, context->argument(timeoutIndex), &timeout))
        return;
    WantedItem item;
    if (byText)
        item.text = first->toString();
    else
        item = {QString(), intOf(first), intOf(second)};

    RunnerInterface* const runner = runnerFor("waitForObjectItem");
    if (!runner)
        return;
    // A view that is given by name is waited for first.
    const Outcome<SharedPtr<Object>> object =
        view->isObject() ? outcomeOf(view->toObject())
                         : waitForName(runner, view, "waitForObjectItem", timeout);
    if (!object) {
        setLookupResult(context, object);
        return;
    }
    const SharedPtr<Object> found =
        runner->waitForObjectItem(*object, item.text, item.row, item.column, timeout);
    if (found) {
        context->setObjectResult(found);
        return;
    }
    const QString error = Inspector::self()->lastError();
    context->setError(error.isEmpty() ? itemNotFoundText(item, view, *object) : error,
                      ScriptContext::LookupError);
}

void findObject(ScriptContext* context) {
    if (context->argumentCount() != 1 || !isStringOrObjectName(context->argument(0))) {
        context->setError("findObject() requires a name argument");
        return;
    }
    const QString name = serializeObjectName(context->argument(0));
    const Outcome<SharedPtr<Object>> object = lookUp(name, QStringLiteral("findObject"), [&] {
        return outcomeOf(Inspector::self()->findObject(name));
    });
    if (object) {
        context->setObjectResult(*object);
        return;
    }
    QString error = object.error().text;
    if (error.isEmpty()) {
        qWarning("Inspector::lastError() was empty when it should not be");
        error = QStringLiteral("Unknown lookup error");
    }
    context->setError(error);
}

void findAllObjects(ScriptContext* context) {
    if (context->argumentCount() != 1 || !isStringOrObjectName(context->argument(0))) {
        context->setError("findAllObjects() requires a name argument");
        return;
    }
    Inspector* const inspector = Inspector::self();
    // 1. The name, which must not pick one of several objects.
    const ObjectName name =
        ObjectMap::self()->objectName(serializeObjectName(context->argument(0)));
    if (!name.isValid()) {
        context->setError(inspector->lastError());
        return;
    }
    if (name.properties().contains(QStringLiteral("occurrence"))) {
        context->setError(
            "findAllObjects(): The provided object name must not contain the property "
            "'occurrence'");
        return;
    }
    // 2. The first object; no object is an empty list.
    const SharedPtr<Object> first = inspector->findObject(name.qualifiedName());
    // 3., 4. The others.
    const ObjectList objects = first ? allOccurrences(name, first) : ObjectList();
    // 5. The last look-up was meant to fail.
    inspector->setLastError(QString());
    context->setObjectListResult(objects);
}

}  // namespace Tamrix
