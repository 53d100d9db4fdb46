#include "interpreter/generic/ocrrecognition.h"

#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/invalidresponse.h"
#include "interpreter/generic/progresnotifier.h"
#include "shared/ocr/typedexception.h"
#include "shared/resources/testresource.h"

namespace Tamrix {

QStringList ocrSearchPaths(RunnerInterface* runner) {
    return TestResource::getSearchPaths(runner->testCasePath(), Debugger::currentFile());
}

QSharedPointer<OCR::Result> recognizeText(OCR::Implementation& engine,
                                          const Vision::SearchArea& area,
                                          const QStringList& searchPaths,
                                          const OCR::Options& options) {
    QSharedPointer<OCR::ProgressReporter> progress;
    if (ProgresNotifier::isWanted())
        progress = QSharedPointer<ProgresNotifier>::create();
    const QSharedPointer<OCR::Result> result =
        engine.processImage(area.image(), searchPaths, options, area.region, progress);
    if (progress)
        progress->report(100);
    return result;
}

bool withOcrErrors(ScriptContext* context, RunnerInterface* runner,
                   bool (*work)(ScriptContext*, RunnerInterface*)) {
    try {
        return work(context, runner);
    } catch (const InvalidResponse& exception) {
        const QString problem = handleInvalidResponse(context, runner, exception);
        context->setError(problem.isEmpty()
                              ? QString::fromUtf8(exception.what())
                              : QStringLiteral("Failed saving the invalid response: ") + problem);
    } catch (const std::exception& exception) {
        context->setError(QString::fromUtf8(exception.what()));
    }
    return false;
}

}  // namespace Tamrix
