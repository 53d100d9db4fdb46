// TestVP::verify: a verification point becomes a verdict.

#include <QElapsedTimer>

#include "base/blocking.h"
#include "base/overloaded.h"
#include "platform/testresult/testvp.h"
#include "platform/verification/check.h"
#include "platform/verification/objectnameresolverinterface.h"
#include "platform/verification/testdatacolumns.h"
#include "platform/verification/verificationpointfile.h"

namespace Tamrix {

namespace {

/// Between two looks, in milliseconds.
constexpr int lookInterval = 100;
/// Of a verdict's explanation, in lines.
constexpr int mostLines = 200;

void sleepFor(int milliseconds) {
    blockingSleep(static_cast<unsigned long>(milliseconds) * 1000);
}

/// The objects that the point names.
QStringList objectNames(const VerificationPoint& point) {
    QStringList names;
    std::visit(Overloaded{[&names](const PropertiesPoint& properties) {
                              for (const ExpectedObject& object : properties.objects)
                                  names.append(object.name);
                          },
                          [&names](const TablePoint& tables) {
                              for (const ExpectedTable& table : tables.tables)
                                  names.append(table.name);
                          },
                          [&names](const VisualPoint& visual) { names.append(visual.name); }},
               point);
    return names;
}

Outcome<SharedPtr<Object>> resolve(ObjectNameResolverInterface& resolver, QString name) {
    QString error;
    SharedPtr<Object> object = resolver.resolveObjectName(&name, &error);
    if (object)
        return object;
    return fail(FailureKind::NotFound,
                error.isEmpty() ? QStringLiteral("Object '%1' not found").arg(name) : error);
}

/// Fails with the resolver's own text for a point with more objects than it knows.
Outcome<> checkObjects(const VerificationPoint& point, ObjectNameResolverInterface& resolver) {
    const QStringList names = objectNames(point);
    if (names.size() == 1 || resolver.canResolveMultipleObjects())
        return {};
    for (const QString& name : names) {
        if (const auto object = resolve(resolver, name); !object)
            return fail(object.error());
    }
    return {};
}

/// Looks until all is as expected or the time is over. An object that is missing has been waited
/// for by then.
Findings lookRepeatedly(const VerificationPoint& point, ObjectNameResolverInterface& resolver,
                        int milliseconds) {
    const FindObject findObject = [&resolver](const QString& name) {
        return resolve(resolver, name);
    };
    QElapsedTimer time;
    time.start();
    while (true) {
        Findings findings =
            std::visit([&](const auto& each) { return check(each, findObject); }, point);
        const qint64 left = milliseconds - time.elapsed();
        if (findings.isAsExpected() || findings.isObjectMissing || left <= 0)
            return findings;
        sleepFor(static_cast<int>(std::min<qint64>(left, lookInterval)));
    }
}

QString linesOf(const QStringList& differences) {
    QStringList lines = differences.mid(0, mostLines);
    if (differences.size() > mostLines)
        lines.append(
            QStringLiteral("and %1 more").arg(QString::number(differences.size() - mostLines)));
    return lines.join(QLatin1Char('\n'));
}

QString detailOf(const Findings& findings) {
    const QString compared = QString::number(findings.compared);
    const QStringList differences = findings.differences();
    if (differences.isEmpty())
        return QStringLiteral("As expected: %1 %2").arg(compared, findings.things);
    if (differences.size() == 1)
        return differences.constFirst();
    return QStringLiteral("%1 differences in %2 %3, the first one: %4")
        .arg(QString::number(differences.size()), compared, findings.things,
             differences.constFirst());
}

bool s_renews = false;

}  // namespace

void TestVP::setRenewal(bool on) {
    s_renews = on;
}

VPResult TestVP::verify(TestResult* result, const std::vector<LineInfo>& callStack,
                        RunnerInterface* runner, const QString& message,
                        ObjectNameResolverInterface* resolver, const VerificationOptions& options,
                        const TestDataRecord* record, bool xMode) const {
    // 1. What is expected.
    Outcome<VerificationPoint> read = readVerificationPoint(m_path);
    if (!read)
        return VPResult::error(read.error().text);
    Outcome<VerificationPoint> point = withRecord(*std::move(read), record);
    if (!point)
        return VPResult::error(
            QStringLiteral("Verification point '%1': %2").arg(m_name, point.error().text));
    if (const Outcome<> resolvable = checkObjects(*point, *resolver); !resolvable)
        return VPResult::error(resolvable.error().text);

    // 2. What is there.
    Findings findings = lookRepeatedly(*point, *resolver, options.retryDuration());

    // 3. What differs is renewed when that is wanted, and told.
    if (s_renews && !xMode && !findings.renewable.isEmpty()) {
        const Outcome<> written = writeVerificationPoint(m_path, findings.renewed);
        if (!written)
            return VPResult::error(written.error().text);
        if (result)
            result->addResult(QDateTime::currentDateTime(), TestResult::Warning,
                              QStringLiteral("Verification point '%1' was renewed").arg(m_name),
                              m_path, callStack, message, -1, linesOf(findings.renewable));
        findings.renewable.clear();
    }

    // 4. The verdict.
    const bool passed = findings.isAsExpected();
    const TestResult::ResultType type =
        xMode ? (passed ? TestResult::UnexpectedPass : TestResult::ExpectedFail)
              : (passed ? TestResult::Pass : TestResult::Fail);
    QString headline = QStringLiteral("Verification point '%1'").arg(m_name);
    const QString detail = detailOf(findings);
    if (options.testFlag(VerificationOptions::SilentVerifications))
        return VPResult::verdict(passed, headline, detail);
    if (wantLogScreenshotForResult(options, type)) {
        sleepFor(options.screenshotDelay());
        headline += logScreenshot(runner, type, QImage());
    }
    if (result) {
        if (!passed)
            attachPictures(result, runner, findings.pictures.expected, findings.pictures.actual,
                           findings.pictures.difference);
        const QStringList differences = findings.differences();
        result->addResult(QDateTime::currentDateTime(), type, headline, detail, callStack, message,
                          -1, differences.size() > 1 ? linesOf(differences) : QString());
    }
    return VPResult::verdict(passed, headline, detail);
}

}  // namespace Tamrix
