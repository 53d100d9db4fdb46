#include "interpreter/generic/tamrixinfo.h"

#include <QDir>

#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/runneraccess.h"

namespace Tamrix {

namespace {

constexpr int major = 7;
constexpr int minor = 1;
constexpr int patch = 0;
/// Major, minor and patch in the three top bytes, 0xF0 in the lowest.
constexpr int packedVersion = (major << 24) | (minor << 16) | (patch << 8) | 0xF0;

}  // namespace

void infoTestCase(ScriptContext* context) {
    RunnerInterface* const runner = runnerFor("currentTestCase");
    if (!runner)
        return;
    const QString path = QDir::cleanPath(runner->testCasePath());
    context->setStringResult(QDir::toNativeSeparators(path.left(path.lastIndexOf('/'))));
}

void infoTestCaseName(ScriptContext* context) {
    RunnerInterface* const runner = Interpreter::currentRunner();
    context->setStringResult(runner ? runner->testCaseName() : QString(QLatin1String("")));
}

void infoTestSuiteName(ScriptContext* context) {
    RunnerInterface* const runner = Interpreter::currentRunner();
    context->setStringResult(runner ? runner->testSuiteName() : QString(QLatin1String("")));
}

void infoVersionString(ScriptContext* context) {
    context->setStringResult(
        QStringLiteral("%1.%2.%3")
            .arg(QString::number(major), QString::number(minor), QString::number(patch)));
}

void infoVersion(ScriptContext* context) {
    context->setIntegerResult(packedVersion);
}

void infoMajor(ScriptContext* context) {
    context->setIntegerResult(major);
}

void infoMinor(ScriptContext* context) {
    context->setIntegerResult(minor);
}

void infoPatch(ScriptContext* context) {
    context->setIntegerResult(patch);
}

void infoSettingsGroup(ScriptContext* context) {
    if (RunnerInterface* runner = runnerFor("currentSettingsGroup"))
        context->setStringResult(runner->settingsGroup());
}

void infoDefaultDevice(ScriptContext* context) {
    // The warning of settingsGroup is meant.
    if (RunnerInterface* runner = runnerFor("currentSettingsGroup"))
        context->setStringResult(runner->defaultDevice());
}

void infoResultDir(ScriptContext* context) {
    if (RunnerInterface* runner = runnerFor("currentResultDir"))
        context->setStringResult(runner->currentResultDirectory());
}

}  // namespace Tamrix
