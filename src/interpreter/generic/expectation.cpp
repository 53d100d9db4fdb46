#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/objectarguments.h"
#include "interpreter/generic/runneraccess.h"
#include "interpreter/generic/testfunctions.h"
#include "interpreter/generic/verdictsupport.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectmap.h"

namespace Tamrix {

namespace {

/// What a script expects of which object.
struct Expectation {
    /// Null when it is named.
    SharedPtr<Object> object;
    QString name;
    ObjectName properties;
    int timeout = 0;
    QString comment;
};

/// The name that an argument stands for; invalid, with the error set, when no application could
/// look for it.
ObjectName readName(ScriptContext* context, const SharedPtr<ScriptArgument>& argument) {
    const ObjectName name = ObjectMap::self()->objectName(serializeObjectName(argument));
    const QString fault = name.isValid() ? nameFault(name) : Inspector::self()->lastError();
    if (fault.isEmpty())
        return name;
    context->setError(fault);
    return {};
}

/// False with the error set when the arguments are wrong.
bool readExpectation(ScriptContext* context, Expectation* expectation) {
    const int count = context->argumentCount();
    if (count < 2 || count > 4) {
        context->setError("expect() expects 2-4 arguments");
        return false;
    }
    const SharedPtr<ScriptArgument> wanted = context->argument(0);
    if (!isObjectOrName(wanted)) {
        context->setError("expect() requires an object or an object name argument");
        return false;
    }
    const SharedPtr<ScriptArgument> properties = context->argument(1);
    if (!isStringOrObjectName(properties)) {
        context->setError("expect() requires the expected properties as its second argument");
        return false;
    }
    if (properties->isMap() && properties->toMap().empty()) {
        context->setError("expect() requires at least one expected property");
        return false;
    }
    if (!readTimeout(context, context->argument(2), &expectation->timeout))
        return false;
    expectation->comment = optionalText(context->argument(3));
    expectation->properties = readName(context, properties);
    if (!expectation->properties.isValid())
        return false;
    // It picks one of several objects and is none's property.
    if (expectation->properties.properties().contains(QStringLiteral("occurrence"))) {
        context->setError("expect(): The expected properties must not contain 'occurrence'");
        return false;
    }
    if (wanted->isObject()) {
        expectation->object = wanted->toObject();
        return true;
    }
    expectation->name = serializeObjectName(wanted);
    if (!readName(context, wanted).isValid())
        return false;
    if (Inspector::self()->model())
        return true;
    context->setError(Inspector::noApplicationText);
    return false;
}

/// Waits; whether the object had the properties in time, with the text of the verdict.
bool holds(const Expectation& expectation, RunnerInterface* runner, QString* detail) {
    const SharedPtr<Object> found = runner->waitForProperties(
        expectation.object, expectation.name, expectation.properties, expectation.timeout);
    if (!found) {
        *detail = Inspector::self()->lastError();
        return false;
    }
    const QString what = expectation.object ? QStringLiteral("The %1").arg(found->className())
                                            : QStringLiteral("Object '%1'").arg(expectation.name);
    *detail = QStringLiteral("%1 has %2").arg(what, expectation.properties.qualifiedName());
    return true;
}

}  // namespace

void testExpect(ScriptContext* context) {
    // 1. The arguments.
    Expectation expectation;
    if (!readExpectation(context, &expectation))
        return;
    RunnerInterface* const runner = runnerFor("test.expect");
    if (!runner)
        return;
    // 2. The wait.
    QString detail;
    const bool passed = holds(expectation, runner, &detail);
    // 3. The verdict becomes a result, and a failure has its consequences.
    const TestResult::ResultType type = passed ? TestResult::Pass : TestResult::Fail;
    const QString message = "Expectation" + screenshotForResult(type);
    addScriptResult(context, type, message, detail, expectation.comment);
    if (!passed && failureAction(context, message, detail, expectation.comment))
        return;
    context->setBoolResult(passed);
}

}  // namespace Tamrix
