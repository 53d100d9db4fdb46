#include "interpreter/bdd/runfeaturefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <optional>
#include <sstream>

#include "interpreter/bdd/bdtdebugger.h"
#include "interpreter/bdd/bdtreportgenerator.h"
#include "interpreter/bdd/bdttestresultlogger.h"
#include "interpreter/bdd/gherkinfilter.h"
#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "platform/gherkin/errors.h"
#include "platform/gherkin/featurerun.h"

namespace Tamrix {

void runFeatureFile(ScriptContext* context) {
    // 1. Exactly one argument,
    if (context->argumentCount() != 1) {
        context->setError("runFeatureFile() requires a feature file name as argument");
        return;
    }
    // 2. a file name.
    if (!context->argument(0) || !context->argument(0)->isString()) {
        context->setError("runFeatureFile() requires a feature file name as argument");
        return;
    }
    const QString name = context->argument(0)->toString();
    const QFileInfo fileInfo(name);
    const QString path = fileInfo.absoluteFilePath();

    // 3. The whole file.
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        context->setError(QStringLiteral("runFeatureFile() failed to open file '%1'").arg(name));
        return;
    }
    const QByteArray content = file.readAll();
    file.close();

    // 4. Which scenarios are to run.
    RunnerInterface* const runner = Interpreter::currentRunner();
    QString filterError;
    const std::unique_ptr<GherkinFilter> filter = gherkinFilterByArgs(
        runner ? runner->filterArguments() : QStringList(),
        runner ? runner->scenarioIndices() : std::vector<unsigned>(), &filterError);
    if (!filter) {
        context->setError(filterError);
        return;
    }

    // 5. Who acts, who is told, and who follows.
    Gherkin::ScriptActions* const actions = context->gherkinScriptActions(path);
    // Its scripts may not be right.
    if (context->hasError())
        return;
    BDTTestResultLogger logger(context->testResult());
    BDTReportGenerator report(path, &logger);
    Debugger* const debugger = Debugger::self();
    int sourceId = -1;
    std::optional<BDTDebugger> featureDebugger;
    if (debugger) {
        sourceId = debugger->nextSourceId();
        debugger->setCode(sourceId, path);
        featureDebugger.emplace(debugger, sourceId);
    }

    // 6. The text as a stream, and where it is from.
    const std::string directory =
        QDir::toNativeSeparators(fileInfo.absolutePath()).toLocal8Bit().toStdString();
    std::istringstream stream(content.toStdString(), std::ios::in | std::ios::binary);

    // 7. The run.
    const auto setRunError = [&](const QString& message, int line) {
        context->setError(message, DebuggerFrame{line, 0, sourceId});
    };
    try {
        Gherkin::runFeatureFile(&stream, directory, filter.get(), actions, &report,
                                featureDebugger ? &*featureDebugger : nullptr,
                                runner ? runner->runLevel() : 0);
    } catch (const Gherkin::SyntaxError& error) {
        setRunError(QStringLiteral("Syntax error in %1:%2: %3 (got '%4')")
                        .arg(path, QString::number(error.line()), QString::fromUtf8(error.what()),
                             QString::fromStdString(error.token())),
                    error.line());
        return;
    } catch (const Gherkin::RunFeatureError& error) {
        setRunError(QStringLiteral("Error running feature file in %1:%2: %3")
                        .arg(path, QString::number(error.line()), QString::fromUtf8(error.what())),
                    error.line());
        return;
    }

    // 8. What steps have left as errors is told.
    context->setError(QString());
}

}  // namespace Tamrix
