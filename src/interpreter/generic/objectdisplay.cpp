#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/objectarguments.h"
#include "interpreter/generic/objectfunctions.h"
#include "interpreter/generic/runneraccess.h"
#include "interpreter/objects/namelookup.h"
#include "platform/objectmodel/inspector.h"
#include "shared/uiabstraction/xmlexporter.h"

namespace Tamrix {

namespace {

constexpr int defaultHighlightTime = 3000;

/// The tree of the object that an argument is or names.
Outcome<QByteArray> snapshotOf(const SharedPtr<ScriptArgument>& wanted) {
    if (wanted->isObject())
        return requestObjectSnapshot(wanted->toObject());
    const QString name = serializeObjectName(wanted);
    return lookUp(name, QStringLiteral("saveObjectSnapshot"),
                  [&] { return requestObjectSnapshot(name); });
}

/// The object to highlight; null with the error set when there is none.
SharedPtr<Object> highlightedObject(ScriptContext* context, RunnerInterface* runner) {
    const SharedPtr<ScriptArgument> argument = context->argument(0);
    if (argument->isObject()) {
        const SharedPtr<Object> object = argument->toObject();
        if (object && !object->isNull())
            return object;
        context->setError("Cannot highlight an invalid object");
        return {};
    }
    const QString name = serializeObjectName(argument);
    const Outcome<SharedPtr<Object>> object = lookUp(name, QStringLiteral("highlightObject"), [&] {
        return outcomeOf(
            runner->waitForObjectExists(name, true, TestSettingsType::s_waitForObjectTimeout));
    });
    if (!object)
        context->setError(object.error().text);
    return object.value_or(nullptr);
}

}  // namespace

bool highlightObject(ScriptContext* context) {
    const int count = context->argumentCount();
    if (count < 1 || count > 3) {
        context->setError("highlightObject() requires at least 1 and at most 3 arguments");
        return false;
    }
    if (context->argument(1) && !context->argument(1)->isNumber()) {
        context->setError("Invalid type of timeout value");
        return false;
    }
    const int milliseconds = intOf(context->argument(1), defaultHighlightTime);
    const bool endless = milliseconds < 1;
    const bool block = context->argument(2) && context->isTrue(context->argument(2));
    if (block && endless) {
        context->setError("indefinite blocking highlight can never return");
        return false;
    }
    if (!context->argument(0)->isObject() && !isStringOrObjectName(context->argument(0))) {
        context->setError("highlightObject() argument must be an object or name");
        return false;
    }
    RunnerInterface* const runner = runnerFor("highlightObject");
    if (!runner)
        return true;
    const SharedPtr<Object> object = highlightedObject(context, runner);
    if (!object)
        return false;
    const QString error = runner->highlightObject(object, endless ? -1 : milliseconds);
    if (!error.isEmpty()) {
        context->setError(error);
        return false;
    }
    if (block) {
        runner->snooze(milliseconds / 1000.0);
        runner->stopHighlight();
    }
    return true;
}

bool saveObjectSnapshot(ScriptContext* context) {
    if (context->argumentCount() != 2) {
        context->setError("saveObjectSnapshot() requires exactly 2 arguments");
        return false;
    }
    const SharedPtr<ScriptArgument> wanted = context->argument(0);
    if (!wanted->isObject() && !isStringOrObjectName(wanted)) {
        context->setError("First argument must be an object name or reference");
        return false;
    }
    if (!context->argument(1)->isString()) {
        context->setError("Second argument must be a string with dump file location to write");
        return false;
    }
    const Outcome<QByteArray> elements = snapshotOf(wanted);
    if (!elements) {
        context->setError(elements.error().text);
        return false;
    }
    UIAbstraction::XmlExporter exporter(*elements);
    if (exporter.toXml(context->argument(1)->toString()))
        return true;
    context->setError(exporter.errorMessage());
    return false;
}

}  // namespace Tamrix
