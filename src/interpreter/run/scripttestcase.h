#pragma once

#include <QDir>
#include <QFileInfo>
#include <QString>
#include <QStringList>

#include "base/export.h"
#include "interpreter/bridge/debugger.h"
#include "platform/testresult/testcase.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

class Interpreter;
class RunnerInterface;
struct ScriptLanguageInformation;

/// Runs one test script through the interpreter of its language. Every failure becomes a result.
/// Script thread only.
class TAMRIX_EXPORT ScriptTestCase : public TestCase {
public:
    /// `result` and `runner` are not owned and may be null.
    ScriptTestCase(TestResult* result, const QDir& testCaseDirectory, RunnerInterface* runner,
                   const QStringList& scriptArguments);
    /// Deletes the current interpreter.
    ~ScriptTestCase() override;

    /// Finds the script's language, loads its plug-in and makes its interpreter the current one.
    /// False when nothing can run.
    bool load(const QString& scriptFile, Debugger::DbgMode mode);

    /// The same for a feature file that runs without a script: exec() runs it, and init() and
    /// cleanup() have nothing to do. Its language is that of the files with steps.
    bool loadFeature(const QString& featureFile, Debugger::DbgMode mode);

    /// Checks and evaluates the script's text, which defines its functions.
    bool evaluate(const QString& scriptText);

    // Run the script functions "init", "main" and "cleanup"; only "main" is required.
    bool init() override;
    bool exec() override;
    bool cleanup() override;

    /// The file name of the script, empty until load() succeeded.
    QString testScriptName() const;

    /// Evaluates a wrapper's extension scripts and init scripts, which the installation's settings
    /// name. May run before any load().
    static bool initWrapper(const QString& wrapperName, TestResult* result,
                            RunnerInterface* runner);

    /// The current interpreter, and that of the test script itself. They are the same but for the
    /// time in which a wrapper's init script runs in another language.
    static Interpreter* ip;
    static Interpreter* defip;

private:
    /// What the two ways of loading have in common, from the language on.
    bool loadLanguage(const QFileInfo& file, const ScriptLanguageInformation& language,
                      Debugger::DbgMode mode);
    bool failToLoad(const QString& message, const QString& detail, const QString& path);
    bool internalRun(const QString& name, bool optional);
    /// Turns the interpreter's error into a result. Always false.
    bool reportScriptError();

    RunnerInterface* m_runner;
    QStringList m_scriptArguments;
    QFileInfo m_scriptFile;
    bool m_isFeature = false;
};

}  // namespace Tamrix
