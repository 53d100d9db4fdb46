#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix {

class TestResult;

/// What scripts print: the language's standard streams write here. Text goes to the result sink
/// line by line, so that it stands in order with the results; without a sink it goes to the
/// process's own streams. Used by one thread at a time.
class TAMRIX_EXPORT ScriptOutput {
public:
    enum Stream { Stdout = 0, Stderr = 1 };

    void setTestResult(TestResult* result) { m_result = result; }

    void write(Stream stream, const QString& text);
    /// Passes on what is not a whole line yet. Before each call of a native function, and at the
    /// end of each run of script code.
    void flush() {
        if (!m_pending.isEmpty()) [[unlikely]]
            pass(m_pending.size());
    }
    /// To the process's own stream, past all results.
    static void writeToProcess(Stream stream, const QString& text);

private:
    void pass(int length);

    TestResult* m_result = nullptr;
    Stream m_stream = Stdout;
    QString m_pending;
};

}  // namespace Tamrix
