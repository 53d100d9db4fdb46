#include "platform/testresult/resulttypes.h"

namespace Tamrix {

const std::array<ResultTypeInfo, 9> resultTypes = {{
    // type, name, category, isVerdict, isFailure
    {TestResult::Pass, "Pass", "passes", true, false},
    {TestResult::Fail, "Fail", "fails", true, true},
    {TestResult::UnexpectedPass, "Unexpected pass", "xpasses", true, true},
    {TestResult::ExpectedFail, "Expected fail", "xfails", true, false},
    {TestResult::Error, "Error", "errors", false, true},
    {TestResult::Fatal, "Fatal", "fatals", false, true},
    {TestResult::Warning, "Warning", "warnings", false, false},
    {TestResult::Skipped, "Skipped", "skips", false, false},
    {TestResult::Log, "Log", "logs", false, false},
}};

const ResultTypeInfo* resultTypeInfo(int type) {
    for (const ResultTypeInfo& info : resultTypes) {
        if (info.type == type)
            return &info;
    }
    return nullptr;
}

QString resultTypeName(int type) {
    if (const ResultTypeInfo* info = resultTypeInfo(type))
        return QString::fromLatin1(info->name);
    return QStringLiteral("Result %1").arg(type);
}

bool isFailure(const ResultAdded& result) {
    const ResultTypeInfo* info = resultTypeInfo(result.type);
    return !result.isEcho && info && info->isFailure;
}

bool isCaseSkip(const ResultAdded& result) {
    return result.type == TestResult::Skipped && result.skipped == QLatin1String("testcase");
}

}  // namespace Tamrix
