#include "interpreter/generic/verificationpoints.h"

#include <QDir>
#include <QFileInfo>

#include "interpreter/bridge/actionrecord.h"
#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/objectarguments.h"
#include "interpreter/generic/objectnameresolver.h"
#include "interpreter/generic/runneraccess.h"
#include "interpreter/generic/verdictsupport.h"
#include "interpreter/objects/namelookup.h"
#include "platform/objectmodel/inspector.h"
#include "platform/testresult/testvp.h"
#include "platform/verification/pointcreation.h"
#include "shared/resources/testresource.h"

namespace Tamrix {

namespace {

QString folderName() {
    return TestResource::directoryName(TestResource::VerificationPoint);
}

/// What a script wants of a comparison.
enum class Wanted { Pass, Failure };

/// One call of a script: which point, and with what.
struct VerificationCall {
    QString name;
    QString path;
    QString message;
    const TestDataRecord* record = nullptr;
    Wanted wanted = Wanted::Pass;
};

/// The file of a point: from the file that runs, or else from the test case. Empty when there is
/// none.
QString locateVerificationPointFile(const QString& name, const QString& currentFile,
                                    const QString& testCasePath) {
    const QString current = currentFile.isEmpty() ? QString() : QDir::cleanPath(currentFile);
    // Without a file that runs, its folder would be the working folder.
    if (!current.isEmpty()) {
        const QString path = locateVP(name, current);
        if (QFileInfo::exists(path))
            return path;
    }
    const QString script = QDir::isRelativePath(testCasePath)
                               ? QFileInfo(current).dir().filePath(testCasePath)
                               : testCasePath;
    const QString path = locateVP(name, script);
    return QFileInfo::exists(path) ? path : QString();
}

/// Finds the file of the point; false with the error set when there is none.
bool findFile(ScriptContext* context, RunnerInterface* runner, VerificationCall* call) {
    call->path =
        locateVerificationPointFile(call->name, Debugger::currentFile(), runner->testCasePath());
    if (!call->path.isEmpty())
        return true;
    context->setError(QStringLiteral("Verification point '%1' cannot be found").arg(call->name));
    return false;
}

/// Compares, and lets the outcome have its consequences.
void verifyPoint(ScriptContext* context, RunnerInterface* runner, const VerificationCall& call,
                 ObjectNameResolverInterface& resolver) {
    const bool xMode = call.wanted == Wanted::Failure;
    // 1. The comparison, which adds its results.
    const VPResult result =
        TestVP(call.name, call.path)
            .verify(context->testResult(), context->callStackForResult(true), runner, call.message,
                    &resolver, TestSettingsType::s_vpOptions, call.record, xMode);
    // 2. There was nothing to compare.
    if (result.summary() != VPResult::Passed && result.summary() != VPResult::Failed) {
        context->setError(result.message());
        return;
    }
    // 3. What was not wanted has the consequences of a failed verdict.
    const bool passed = result.summary() == VPResult::Passed;
    if (passed == xMode && failureAction(context, result.message(), result.details(), QString()))
        return;
    context->setBoolResult(passed);
}

void verify(ScriptContext* context, Wanted wanted) {
    const QString function = wanted == Wanted::Pass ? "vp" : "xvp";
    // 1. One or two arguments, the first one a name.
    const int count = context->argumentCount();
    if (count < 1 || count > 2) {
        context->setError(function + "() expects 1-2 arguments");
        return;
    }
    if (!context->argument(0)->isString()) {
        context->setError("Expected verification point name");
        return;
    }
    VerificationCall call;
    call.name = context->argument(0)->toString();
    call.wanted = wanted;
    // 2. The second one is a record of test data or a message. The argument holds the record's
    // table.
    const SharedPtr<ScriptArgument> second = context->argument(1);
    if (second) {
        call.record = second->toTestDataRecord();
        if (!call.record && !second->isString()) {
            context->setError("Expected test data record or message text");
            return;
        }
        if (!call.record)
            call.message = second->toString();
    }
    RunnerInterface* const runner = runnerFor(wanted == Wanted::Pass ? "test.vp" : "test.xvp");
    if (!runner)
        return;
    // 3. The file.
    if (!findFile(context, runner, &call))
        return;
    // 4. The comparison.
    ObjectNameResolver resolver(runner, "test." + function);
    verifyPoint(context, runner, call, resolver);
}

/// The object of an argument that is one or names one, waited for; null with the error set when
/// there is none.
SharedPtr<Object> awaitedObject(ScriptContext* context, RunnerInterface* runner,
                                const SharedPtr<ScriptArgument>& argument) {
    if (argument->isObject())
        return argument->toObject();
    const QString name = serializeObjectName(argument);
    const Outcome<SharedPtr<Object>> object = lookUp(name, "test.vpWithObject", [&] {
        return outcomeOf(
            runner->waitForObjectByName(name, true, TestSettingsType::s_waitForObjectTimeout));
    });
    if (object)
        return *object;
    context->setError(QStringLiteral("Unable to find object '%1'").arg(name));
    return {};
}

}  // namespace

QString locateVP(const QString& name, const QString& testCasePath) {
    const QDir folder = QFileInfo(testCasePath).dir();
    // 1. Beside the script.
    const QString beside = QDir::isAbsolutePath(name)
                               ? name
                               : QStringLiteral("%1/%2/%3").arg(folder.path(), folderName(), name);
    if (QFileInfo::exists(beside))
        return beside;
    // 2. In the folder "shared" that the script is in.
    QDir above(testCasePath);
    while (above.dirName() != QLatin1String("shared") && above.cdUp()) {
    }
    if (above.dirName() == QLatin1String("shared") && above.cd(folderName())) {
        const QString path = QStringLiteral("%1/%2").arg(above.absolutePath(), name);
        if (QFileInfo::exists(path))
            return path;
    }
    // 3. In that of the suite.
    return QStringLiteral("%1/../shared/%2/%3").arg(folder.path(), folderName(), name);
}

void testVP(ScriptContext* context) {
    verify(context, Wanted::Pass);
}

void testXVP(ScriptContext* context) {
    verify(context, Wanted::Failure);
}

void testVPWithObject(ScriptContext* context) {
    // 1. The arguments.
    if (context->argumentCount() != 2) {
        context->setError(QStringLiteral("Expected two arguments, %1")
                              .arg(QString::number(context->argumentCount())));
        return;
    }
    if (!context->argument(0)->isString()) {
        context->setError("Expected verification point name");
        return;
    }
    const SharedPtr<ScriptArgument> wanted = context->argument(1);
    if (!isObjectOrName(wanted)) {
        context->setError(QStringLiteral("Unable to find object '%1'").arg(optionalText(wanted)));
        return;
    }
    VerificationCall call;
    call.name = context->argument(0)->toString();
    RunnerInterface* const runner = runnerFor("test.vpWithObject");
    if (!runner)
        return;
    // 2. The object.
    const SharedPtr<Object> object = awaitedObject(context, runner, wanted);
    if (!object)
        return;
    // 3. The file.
    if (!findFile(context, runner, &call))
        return;
    // 4. The comparison.
    ShadowObjectResolver resolver(object);
    verifyPoint(context, runner, call, resolver);
}

bool createVisualVP(ScriptContext* context) {
    const ActionRecord record(context, "createVisualVP");
    // 1. The arguments.
    const auto refuse = [context](const QString& error) {
        context->setError(error);
        return false;
    };
    if (context->argumentCount() < 2)
        return refuse("Function createVisualVP() requires at least 2 arguments");
    const SharedPtr<ScriptArgument> file = context->argument(1);
    if (!file || !file->isString())
        return refuse("Second argument must be a string with VP file location to write");
    RunnerInterface* const runner = runnerFor("createVisualVP");
    if (!runner)
        return true;
    // 2. The place of the file.
    QString path = file->toString();
    if (QDir::isRelativePath(path))
        path = QStringLiteral("%1/%2/%3")
                   .arg(QFileInfo(runner->testCasePath()).absolutePath(), folderName(), path);
    if (QFileInfo::exists(path))
        return refuse(QStringLiteral("File '%1' already exists").arg(path));
    // 3. The object.
    const SharedPtr<ScriptArgument> wanted = context->argument(0);
    if (!isObjectOrName(wanted))
        return refuse("First argument must be an object name or reference");
    SharedPtr<Object> object;
    if (wanted->isObject()) {
        object = wanted->toObject();
    } else {
        const QString name = serializeObjectName(wanted);
        object = lookUp(name, "createVisualVP", [&] {
                     return outcomeOf(Inspector::self()->findObject(name));
                 }).value_or(nullptr);
        if (!object)
            return refuse(QStringLiteral("Unable to find object: '%1'").arg(name));
    }
    // 4. What it looks like is written.
    const Outcome<QByteArray> snapshot = requestObjectSnapshotForVisualVP(object);
    if (!snapshot)
        return refuse(snapshot.error().text);
    const QString error = createVisualVPFile(path, *snapshot);
    return error.isEmpty() || refuse(error);
}

}  // namespace Tamrix
