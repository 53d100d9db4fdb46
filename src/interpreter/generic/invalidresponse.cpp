#include "interpreter/generic/invalidresponse.h"

#include <QFile>

#include "base/filewriting.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/testfunctions.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

QString handleInvalidResponse(ScriptContext* context, RunnerInterface* runner,
                              const InvalidResponse& exception) {
    // 1. The folder.
    QString error;
    const QFileInfo folder =
        attachmentResultsPath(runner->currentResultDirectory(), runner->testCasePath(), &error);
    if (!error.isEmpty())
        return {};
    error = ensureResultPathExists(folder);
    if (!error.isEmpty())
        return error;
    // 2. The name. That the first reply of the process decides on the suffix of all is meant.
    static const QString s_name =
        QStringLiteral("invalidResponse.%1").arg(exception.responseFormat);
    // 3. The file.
    QFile file;
    if (!createTargetFile(folder.filePath(), QFileInfo(s_name), &file))
        return file.errorString();
    if (!writeAll(&file, exception.responseBytes, &error))
        return error;
    // 4. The attachment.
    if (TestResult* const result = runner->testResult())
        result->addAttachment(
            TestResult::FileAttachment, QStringLiteral("Invalid OCR engine response"),
            QFileInfo(file.fileName()).absoluteFilePath(), context->callStackForResult(false));
    return {};
}

}  // namespace Tamrix
