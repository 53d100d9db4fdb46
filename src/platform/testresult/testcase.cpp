#include "platform/testresult/testcase.h"

namespace Tamrix {

TestCase::TestCase(TestResult* result, const QDir& testCaseDirectory)
    : m_result(result), m_directory(testCaseDirectory) {}

TestCase::~TestCase() = default;

bool TestCase::run() {
    const bool succeeded = init() && exec();
    return cleanup() && succeeded;
}

}  // namespace Tamrix
