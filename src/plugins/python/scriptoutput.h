#pragma once

#include <QString>

#include "plugins/python/pyref.h"

namespace Tamrix {
class TestResult;
}

namespace Tamrix::PythonPlugin {

/// What scripts print: sys.stdout and sys.stderr write here. Text goes to the result sink line by
/// line, so that it stands in order with the results; without a sink it goes to the process's own
/// streams. Used with the GIL held.
class ScriptOutput {
public:
    enum Stream { Stdout = 0, Stderr = 1 };

    ~ScriptOutput();

    void setTestResult(TestResult* result) { m_result = result; }

    /// Replaces sys.stdout and sys.stderr by objects that write to `output`, null for the process's
    /// own streams. False with the error indicator set on failure.
    static bool install(ScriptOutput* output);

    void write(Stream stream, const QString& text);
    /// Passes on what is not a whole line yet.
    void flush() {
        if (!m_pending.isEmpty())
            pass(m_pending.size());
    }

private:
    void pass(int length);

    TestResult* m_result = nullptr;
    Stream m_stream = Stdout;
    QString m_pending;
};

}  // namespace Tamrix::PythonPlugin
