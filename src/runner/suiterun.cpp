#include "runner/suiterun.h"

#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTextCodec>
#include <algorithm>

#include "base/environment.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/testfunctions.h"
#include "interpreter/run/scripttestcase.h"
#include "platform/testresult/resulttypes.h"
#include "platform/testresult/testvp.h"
#include "runner/interrupt.h"
#include "runner/processstate.h"

namespace Tamrix {

namespace {

/// Where pictures that go with results are kept: where attachments of the case are, too.
QString screenshotDirectory(RunnerInterface* runner) {
    QString error;
    const QFileInfo directory =
        attachmentResultsPath(runner->currentResultDirectory(), runner->testCasePath(), &error);
    if (!error.isEmpty())
        qWarning("No screenshots: %s", error.toLocal8Bit().constData());
    return directory.filePath();
}

}  // namespace

SuiteRun::SuiteRun(const Suite& suite, const SuiteRunOptions& options, ReportGenerator* report)
    : m_suite(suite), m_options(options), m_result(report) {
    m_runner.setSuite(suite.name);
    m_runner.setResultDirectory(options.resultDirectory);
    m_runner.setTestResult(&m_result);
    TestVP::setScreenshotServices({[](RunnerInterface*) { return QImage(); }, screenshotDirectory});
}

SuiteRun::~SuiteRun() {
    TestVP::setScreenshotServices({});
}

void SuiteRun::run(const QList<SuiteCase>& cases) {
    const ProcessState stateBeforeRun;
    Environment::setVariable(QStringLiteral("TAMRIX_SUITE_DIR"), m_suite.directory);
    Interrupt::install();
    m_result.startSuite(m_suite.name, m_suite.directory);

    int started = 0;
    for (const SuiteCase& testCase : cases) {
        m_interruptedBy = Interrupt::signalNumber();
        if (m_interruptedBy != 0 || (m_options.failFast && m_hasFailed))
            break;
        ++started;
        runCase(testCase);
    }
    m_interruptedBy = Interrupt::signalNumber();
    m_skippedCases = cases.size() - started;

    m_result.endSuite(m_interruptedBy != 0);
    m_result.setComplete();
}

void SuiteRun::runCase(const SuiteCase& testCase) {
    m_runner.setTestCase(testCase.name, testCase.script);
    m_result.startCase(testCase.name, testCase.script);
    {
        const ProcessState stateBeforeCase;
        if (QDir::setCurrent(testCase.directory)) {
            runScript(testCase);
        } else {
            m_result.addResult(TestResult::Fatal, QStringLiteral("Can't enter test case folder"),
                               testCase.directory, LineInfo(testCase.script, 0));
        }
        ScriptContext::setCurrent(nullptr);
    }
    // Above what the script or its language left there.
    Interrupt::install();
    if (caseHasFailed())
        m_hasFailed = true;
    m_result.endCase(Interrupt::signalNumber() != 0);
}

void SuiteRun::runScript(const SuiteCase& testCase) {
    const pid_t process = ::getpid();
    QString text;
    if (!readScript(testCase.script, &text))
        return;

    ScriptTestCase script(&m_result, QDir(testCase.directory), &m_runner,
                          m_options.scriptArguments);
    bool loaded;
    {
        const Interrupt::Aside aside;
        loaded = script.load(testCase.script, Debugger::Run);
    }
    if (loaded && script.evaluate(text))
        script.run();

    // A script that forked and let its child fall out of the case: the run goes on once only.
    if (::getpid() != process)
        ::_exit(1);
}

bool SuiteRun::readScript(const QString& path, QString* text) {
    QFile file(path);
    QString problem;
    if (file.open(QIODevice::ReadOnly)) {
        const QByteArray bytes = file.readAll();
        QTextCodec::ConverterState state;
        *text =
            QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
        if (file.error() != QFileDevice::NoError)
            problem = file.errorString();
        else if (state.invalidChars > 0 || state.remainingChars > 0)
            problem = QStringLiteral("the file is not encoded in UTF-8");
    } else {
        problem = file.errorString();
    }
    if (problem.isEmpty())
        return true;
    m_result.addResult(TestResult::Fatal, QStringLiteral("Can't read test script"), problem,
                       LineInfo(path, 0));
    return false;
}

bool SuiteRun::caseHasFailed() const {
    return std::any_of(resultTypes.begin(), resultTypes.end(), [this](const ResultTypeInfo& type) {
        return type.isFailure && m_result.count(QLatin1String(type.category)) > 0;
    });
}

}  // namespace Tamrix
