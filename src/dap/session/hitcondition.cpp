#include "dap/session/hitcondition.h"

#include <QRegularExpression>

namespace Tamrix::Dap {

Outcome<HitCondition> HitCondition::parse(const QString& text) {
    struct Operator {
        const char* word;
        Test test;
    };
    static constexpr Operator operators[] = {
        {"", [](int hits, int number) { return hits == number; }},
        {"==", [](int hits, int number) { return hits == number; }},
        {">", [](int hits, int number) { return hits > number; }},
        {">=", [](int hits, int number) { return hits >= number; }},
        {"<", [](int hits, int number) { return hits < number; }},
        {"<=", [](int hits, int number) { return hits <= number; }},
        {"%", [](int hits, int number) { return hits % number == 0; }},
    };
    static const QRegularExpression pattern(QStringLiteral("^\\s*([=<>%]*)\\s*([0-9]+)\\s*$"));
    const QRegularExpressionMatch match = pattern.match(text);
    bool isNumber = false;
    const int number = match.captured(2).toInt(&isNumber);
    for (const Operator& each : operators) {
        if (isNumber && number > 0 && match.captured(1) == QLatin1String(each.word))
            return HitCondition(each.test, number);
    }
    return fail(FailureKind::BadArgument,
                QStringLiteral("the hit condition '%1' is none: a number from 1 on is expected, "
                               "alone or behind ==, >, >=, <, <= or %")
                    .arg(text));
}

}  // namespace Tamrix::Dap
