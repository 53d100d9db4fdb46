#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <memory>
#include <utility>

#include "platform/testresult/journalreader.h"
#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/resulttext.h"
#include "platform/testresult/runsummary.h"
#include "platform/testresult/runtally.h"
#include "runner/mcp/screen/viewtext.h"
#include "runner/mcp/session/session.h"
#include "runner/mcp/tools/arguments.h"
#include "runner/processes/childprocess.h"

namespace Tamrix::Mcp {

namespace {

constexpr int lookInterval = 50;
/// How long a run may take to end when it is given up.
constexpr int endPatience = 10000;
constexpr int outputPatience = 500;

class TallyReport : public ReportGenerator {
public:
    void add(const ReportEntry& entry) override { tally.add(entry); }
    RunTally tally;
};

/// Runs to the end. A failure when the run is given up.
Outcome<std::unique_ptr<ChildProcess>> runToTheEnd(Session& session, const QStringList& arguments) {
    ProgramStart start;
    start.program = QCoreApplication::applicationFilePath();
    start.arguments = arguments;
    start.signalAtRunnersEnd = SIGTERM;
    Outcome<std::unique_ptr<ChildProcess>> run = ChildProcess::start(start);
    if (!run)
        return run;
    while (!(*run)->waitForEnd(lookInterval)) {
        session.applications().work();
        if (!session.isGivenUp())
            continue;
        ::kill((*run)->pid(), SIGTERM);
        if (!(*run)->waitForEnd(endPatience))
            ::kill((*run)->pid(), SIGKILL);
        return fail(FailureKind::Failed, QStringLiteral("the run was given up"));
    }
    (*run)->output()->waitForEnd(outputPatience);
    return run;
}

/// The failures, shortened to what an answer may have.
QString failuresOf(const RunTally& tally) {
    QString text;
    int left = 0;
    const auto add = [&](const CaseTally& testCase) {
        for (const ResultAdded& failure : testCase.failures) {
            const QString described = describeResult(failure).left(longestViewText / 4);
            if (text.size() + described.size() > longestViewText)
                ++left;
            else
                text += described + QLatin1Char('\n');
        }
    };
    for (const SuiteTally& suite : tally.suites()) {
        add(suite.outside);
        for (const CaseTally& testCase : suite.cases) {
            if (!testCase.isSuperseded)
                add(testCase);
        }
    }
    return left > 0 ? text + QStringLiteral("... %1 more: see journal\n").arg(left) : text;
}

Outcome<ToolAnswer> runCase(Session& session, const Arguments& arguments) {
    // A name never becomes an option of the run.
    const QString testCase = arguments.text("case");
    if (testCase.startsWith(QLatin1Char('-')))
        return fail(FailureKind::BadArgument,
                    QStringLiteral("there is no test case '%1'").arg(testCase));
    auto folder = std::make_unique<QTemporaryDir>();
    if (!folder->isValid())
        return fail(
            FailureKind::Failed,
            QStringLiteral("no folder for the run can be made: %1").arg(folder->errorString()));
    const QString journal = folder->filePath(QStringLiteral("run.journal"));
    QStringList words{QStringLiteral("run"), QDir().absoluteFilePath(arguments.text("suite"))};
    if (arguments.has("case"))
        words.append(testCase);
    words << QStringLiteral("--aut-display") << session.display() << QStringLiteral("--result-dir")
          << folder->path() << QStringLiteral("--report") << QStringLiteral("json:") + journal;
    const Outcome<std::unique_ptr<ChildProcess>> run = runToTheEnd(session, words);
    if (!run)
        return fail(run.error());
    const QString errors = QString::fromLocal8Bit((*run)->output()->standardError()).trimmed();
    if (!QFileInfo::exists(journal))
        return fail(FailureKind::BadArgument,
                    errors.isEmpty() ? QStringLiteral("there was no run: %1").arg((*run)->endText())
                                     : errors);
    session.keepRun(std::move(folder), journal);
    TallyReport report;
    JournalReader reader(&report);
    if (!reader.replay(journal))
        return fail(FailureKind::Failed, reader.errorText());
    QString text = caseSummary(report.tally);
    const QString results = resultSummary(report.tally);
    if (!results.isEmpty())
        text += QStringLiteral("; ") + results;
    return ToolAnswer{text + QLatin1Char('\n') + failuresOf(report.tally)};
}

}  // namespace

Tool runCaseTool() {
    return {"run_case",
            "Runs a test case, or a suite; tells the failures",
            {{"suite", ParameterType::Text, Parameter::Required},
             {"case", ParameterType::Text, Parameter::Optional}},
            runCase};
}

}  // namespace Tamrix::Mcp
