#pragma once

#include <QFileInfo>
#include <QString>

#include "base/export.h"

class QFile;

namespace Tamrix {

class ScriptContext;

// The script functions of the namespace "test": verdicts, log lines, sections, attachments and what
// a script asks of its results. They take their arguments from the context, check them by
// themselves, and report with ScriptContext::setError().

TAMRIX_EXPORT void testPass(ScriptContext* context);
TAMRIX_EXPORT void testXPass(ScriptContext* context);
TAMRIX_EXPORT void testFail(ScriptContext* context);
TAMRIX_EXPORT void testXFail(ScriptContext* context);
TAMRIX_EXPORT void testFatal(ScriptContext* context);
TAMRIX_EXPORT void testLog(ScriptContext* context);
TAMRIX_EXPORT void testWarning(ScriptContext* context);
/// Ends the test case as skipped, through a fatal error.
TAMRIX_EXPORT void testSkip(ScriptContext* context);
TAMRIX_EXPORT void testVerify(ScriptContext* context);
TAMRIX_EXPORT void testXVerify(ScriptContext* context);
TAMRIX_EXPORT void testCompare(ScriptContext* context);
TAMRIX_EXPORT void testXCompare(ScriptContext* context);
TAMRIX_EXPORT void testException(ScriptContext* context);
TAMRIX_EXPORT void testResultCount(ScriptContext* context);
TAMRIX_EXPORT void testStackTrace(ScriptContext* context);
TAMRIX_EXPORT void testFixateResultContext(ScriptContext* context);
TAMRIX_EXPORT void testRestoreResultContext(ScriptContext* context);
TAMRIX_EXPORT void testStartSection(ScriptContext* context);
TAMRIX_EXPORT void testEndSection(ScriptContext* context);
TAMRIX_EXPORT void testBreakpoint(ScriptContext* context);
TAMRIX_EXPORT void testAttachFile(ScriptContext* context);
TAMRIX_EXPORT void testAttachImage(ScriptContext* context);
TAMRIX_EXPORT void testAttachDesktopScreenshot(ScriptContext* context);
/// A verdict that waits until an object has the wanted properties.
TAMRIX_EXPORT void testExpect(ScriptContext* context);

// Places of attachments; all that attaches something uses them.

/// The folder for attachments of a test case: "attachments" beside the script's folder when
/// `resultDirectory` is empty, else below it in the folders of suite and case. A missing
/// `resultDirectory` is made. `*error` is set when it can't be used.
TAMRIX_EXPORT QFileInfo attachmentResultsPath(const QString& resultDirectory,
                                              const QString& testCasePath, QString* error);
/// Makes the folder when it is not there. Returns an error text, empty on success.
TAMRIX_EXPORT QString ensureResultPathExists(const QFileInfo& directory);
/// A path in `directory` for a file named like `source` that does not exist yet.
TAMRIX_EXPORT QString calculateTargetFileName(const QString& directory, const QFileInfo& source);
/// Makes the file of such a path and opens it for writing. The name is nobody else's, also when
/// other processes look for one at the same time. False on failure, which the file tells.
TAMRIX_EXPORT bool createTargetFile(const QString& directory, const QFileInfo& source, QFile* file);

}  // namespace Tamrix
