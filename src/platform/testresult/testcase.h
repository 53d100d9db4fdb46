#pragma once

#include <QDir>

#include "base/export.h"

namespace Tamrix {

class TestResult;

/// One test case: a folder and the three steps that run it.
class TAMRIX_EXPORT TestCase {
public:
    /// `result` is not owned and may be null: results are then dropped.
    TestCase(TestResult* result, const QDir& testCaseDirectory);
    virtual ~TestCase();
    TestCase(const TestCase&) = delete;
    TestCase& operator=(const TestCase&) = delete;

    virtual bool init() = 0;
    virtual bool exec() = 0;
    virtual bool cleanup() = 0;

    /// Runs init(), exec() only if that succeeded, and cleanup() in any case. True when all that
    /// ran succeeded.
    bool run();

    QDir testCaseDirectory() const { return m_directory; }
    TestResult* testResult() const { return m_result; }

private:
    TestResult* m_result;
    QDir m_directory;
};

}  // namespace Tamrix
