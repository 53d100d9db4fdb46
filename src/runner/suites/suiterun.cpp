#include "runner/suites/suiterun.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSysInfo>
#include <algorithm>
#include <utility>

#include "base/environment.h"
#include "base/filewriting.h"
#include "base/utf8file.h"
#include "interpreter/bdd/gherkinfilter.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/testfunctions.h"
#include "interpreter/generic/testinteraction.h"
#include "interpreter/language/spoiledprocess.h"
#include "interpreter/names/objectmaps.h"
#include "interpreter/run/scripttestcase.h"
#include "platform/testresult/resulttypes.h"
#include "platform/testresult/testvp.h"
#include "runner/applications/programdisplay.h"
#include "runner/processes/interrupt.h"
#include "runner/processes/shellwords.h"
#include "runner/suites/passwords.h"
#include "runner/suites/runsettings.h"
#include "vision/screenshot/screenshot.h"

namespace Tamrix {

namespace {

/// How long an application may take to show that it can take a picture.
constexpr int pingTimeout = 2000;

SharedPtr<Application> liveApplication(RunnerInterface* runner) {
    const SharedPtr<ApplicationContext> context = runner->applicationContext(QString());
    return runner->isValidContext(context) ? staticPointerCast<Application>(context)
                                           : SharedPtr<Application>();
}

/// The desktop as the application sees it; a null one when it gives none.
Screenshot grabDesktopOf(Application& application) {
    const Outcome<QVariant> picture =
        application.access().nativeRequest(QStringLiteral("desktopScreenshot"), {});
    return picture ? Screenshot::fromVariant(*picture) : Screenshot();
}

/// What is seen of an application that does not answer; null when nobody knows.
QImage grabDisplayOf(Application& application) {
    const std::shared_ptr<StartedProgram> program = application.sharedProgram();
    if (!program || !application.host().isEmpty() ||
        application.access().facts().platform.startsWith(QLatin1String("wayland")))
        return {};
    return displayPictureOf(program->start().program).value_or(QImage());
}

/// Where pictures that go with results are kept: where attachments of the case are, too. Without an
/// application there is nothing to be taken.
QString screenshotDirectory(RunnerInterface* runner) {
    if (!liveApplication(runner))
        return {};
    QString error;
    const QFileInfo directory =
        attachmentResultsPath(runner->currentResultDirectory(), runner->testCasePath(), &error);
    if (!error.isEmpty())
        qWarning("No screenshots: %s", error.toLocal8Bit().constData());
    return directory.filePath();
}

}  // namespace

SuiteRun::SuiteRun(const Suite& suite, const SuiteRunOptions& options, ReportGenerator* report)
    : m_suite(suite),
      m_options(options),
      m_trace(options.trace == TraceMode::Off
                  ? nullptr
                  : std::make_unique<CaseTrace>(options.trace, options.traceFolder, traceView(),
                                                report)),
      m_filter(m_trace ? m_trace.get() : report),
      m_result(&m_filter),
      m_video(options.video, m_runner, m_result) {
    m_runner.facts.suiteName = suite.name;
    m_runner.facts.resultDirectory = options.resultDirectory;
    m_runner.facts.testResult = &m_result;
    m_runner.facts.tagFilters = options.tagFilters;
    m_runner.facts.scenarios = options.scenarios;
    m_runner.facts.places = {suite.directory, suite.config.fileName, suite.config.applications};
    m_result.setRecordsActions(options.recordsActions);
    TestVP::setRenewal(options.renewsVerificationPoints);
    TestInteraction::setInteractive(options.isInteractive);
    TestVP::setScreenshotServices(
        {[this](RunnerInterface*) { return grabDesktop(); }, screenshotDirectory,
         [this](RunnerInterface*, const QString& folder) { keepFailureMoment(folder); }});
}

SuiteRun::~SuiteRun() {
    TestVP::setRenewal(false);
    TestInteraction::setInteractive(false);
    TestVP::setScreenshotServices({});
}

Outcome<> SuiteRun::prepare() {
    if (const Outcome<> loaded = loadObjectMap(); !loaded)
        return loaded;
    QString filterError;
    if (!allFilterByArgs(m_options.tagFilters, m_options.scenarios, &filterError))
        return fail(FailureKind::BadArgument, filterError);
    if (const Outcome<> prepared = m_video.prepare(); !prepared)
        return prepared;
    return m_runner.applications.useDisplay(m_options.display);
}

Outcome<> SuiteRun::loadObjectMap() {
    return useObjectMap(m_runner.objectMapPath());
}

void SuiteRun::run(const QList<SuiteCase>& cases) {
    int started = 0;
    runCases([&]() -> const SuiteCase* {
        return started < cases.size() ? &cases.at(started++) : nullptr;
    });
    m_skippedCases = cases.size() - started;
    m_isHandedOver = m_skippedCases > 0 && m_interruptedBy == 0 && mayGoOn() && isSpoiled();
    if (!m_isHandedOver)
        endSuite();
}

void SuiteRun::run(const NextCase& nextCase) {
    runCases(nextCase);
    endSuite();
}

bool SuiteRun::mayGoOn() const {
    return Interrupt::signalNumber() == 0 &&
           (m_options.maxFailures == 0 || m_failedCases < m_options.maxFailures);
}

bool SuiteRun::isProcessSpoiled() {
    return Tamrix::isProcessSpoiled();
}

bool SuiteRun::isSpoiled() const {
    return m_options.mayHandOver && isProcessSpoiled();
}

void SuiteRun::runCases(const NextCase& nextCase) {
    m_passwords = takePasswords();
    const Secrets secrets(m_passwords.values());
    m_filter.setSecrets(secrets);
    if (m_trace)
        m_trace->setSecrets(secrets);
    const ProcessState stateBeforeRun;
    Environment::setVariable(QStringLiteral("TAMRIX_SUITE_DIR"), m_suite.directory);
    Interrupt::install();
    m_result.startSuite(m_suite.name, m_suite.directory);
    noteEnvironment();

    while (mayGoOn() && !isSpoiled()) {
        const SuiteCase* const testCase = nextCase();
        if (!testCase)
            break;
        runCase(*testCase);
    }
    m_interruptedBy = Interrupt::signalNumber();
    // What the last case has set ends with it as well.
    TestSettingsType::reset();
}

void SuiteRun::endSuite() {
    m_result.endSuite(m_interruptedBy != 0);
    m_result.setComplete();
}

void SuiteRun::noteEnvironment() {
    m_result.addEnvironment(QStringLiteral("Tamrix"), QStringLiteral(TAMRIX_VERSION));
    m_result.addEnvironment(QStringLiteral("Qt"), QString::fromLatin1(qVersion()));
    m_result.addEnvironment(
        QStringLiteral("System"),
        QStringLiteral("%1, %2 %3, %4")
            .arg(QSysInfo::prettyProductName(), QSysInfo::kernelType(), QSysInfo::kernelVersion(),
                 QSysInfo::currentCpuArchitecture()));
    m_result.addEnvironment(QStringLiteral("Host"), QSysInfo::machineHostName());
    m_result.addEnvironment(QStringLiteral("Display"), m_runner.applications.display());
    m_result.addEnvironment(QStringLiteral("Command"),
                            quotedShellWords(QCoreApplication::arguments()));
    m_result.addEnvironment(QStringLiteral("Script arguments"),
                            quotedShellWords(m_options.scriptArguments));
    if (m_trace)
        m_result.addEnvironment(QLatin1String(traceFactName), m_options.traceFolder);
    for (const EnvironmentFact& fact : m_options.facts)
        m_result.addEnvironment(fact.name, fact.fact);
}

void SuiteRun::renewHome() {
    if (!m_options.hasPrivateHomes)
        return;
    if (const Outcome<> renewed = m_home.renew(); !renewed) {
        m_result.addResult(TestResult::Warning,
                           QStringLiteral("Applications get no home of their own"),
                           renewed.error().text, LineInfo());
    }
    m_runner.applications.setCaseEnvironment(m_home.environment());
}

void SuiteRun::runCase(const SuiteCase& testCase) {
    m_runner.startCase(testCase.name, testCase.script);
    m_result.startCase(testCase.name, testCase.script);
    startRunSettings(m_suite.config, m_passwords, &m_result);
    m_failureMoment.reset();
    renewHome();
    m_video.startCase();
    if (const Outcome<> loaded = loadObjectMap(); !loaded) {
        m_result.addResult(TestResult::Error, QStringLiteral("Can't read the map of object names"),
                           loaded.error().text, LineInfo());
    }
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
    endApplications();
    m_standardStreams.restore();
    m_video.endCase(caseHasFailed() || Interrupt::signalNumber() != 0);
    // Above what the script or its language left there.
    Interrupt::install();
    if (caseHasFailed())
        ++m_failedCases;
    m_result.endCase(Interrupt::signalNumber() != 0 && !Interrupt::isTimeOut());
}

void SuiteRun::runScript(const SuiteCase& testCase) {
    const pid_t process = ::getpid();
    const bool isFeature = isFeatureCase(testCase);
    QString text;
    if (!isFeature && !readScript(testCase.script, &text))
        return;

    ScriptTestCase script(&m_result, QDir(testCase.directory), &m_runner,
                          m_options.scriptArguments);
    bool loaded;
    {
        const Interrupt::Aside aside;
        prepareDebuggers(m_options.debugger);
        const Debugger::DbgMode mode = isDebugged() ? Debugger::Step : Debugger::Run;
        loaded = isFeature ? script.loadFeature(testCase.script, mode)
                           : script.load(testCase.script, mode);
    }
    if (loaded && isDebugged())
        startDebugging(testCase);
    if (loaded && (isFeature || script.evaluate(text)))
        script.run();

    // A script that forked and let its child fall out of the case: the run goes on once only.
    if (::getpid() != process)
        ::_exit(1);
}

void SuiteRun::tellWhereScriptStands() {
    std::vector<LineInfo> stack;
    if (ScriptTestCase::ip)
        stack = ScriptTestCase::ip->interruptedStack();
    if (stack.empty())
        stack.emplace_back(m_runner.testCasePath(), 0);
    QString message = QStringLiteral("The script did not end");
    if (TestVP::wantLogScreenshotForResult(TestSettingsType::s_vpOptions, TestResult::Error))
        message += TestVP::logScreenshot(&m_runner, TestResult::Error, QImage());
    m_result.addResult(QDateTime::currentDateTime(), TestResult::Error, message,
                       QStringLiteral("It was running here when its process was killed"), stack);
}

void SuiteRun::startDebugging(const SuiteCase& testCase) {
    if (Debugger* const debugger = ScriptTestCase::ip->debugger()) {
        debugger->setFrontEnd(createFrontEnd(m_options.debugger));
        return;
    }
    m_result.addResult(TestResult::Warning, QStringLiteral("The script can't be debugged"),
                       QStringLiteral("Its language has no debugger"),
                       LineInfo(testCase.script, 0));
}

QImage SuiteRun::grabDesktop() {
    // The picture of a case that took too long is wanted in spite of the signal that ended it.
    if (Interrupt::isTimeOut())
        m_runner.applications.startCall();
    m_desktop = Screenshot();
    const SharedPtr<Application> application = liveApplication(&m_runner);
    if (!application)
        return {};
    if (!application->access().ping(pingTimeout))
        return grabDisplayOf(*application);
    m_desktop = grabDesktopOf(*application);
    return m_desktop.image();
}

void SuiteRun::keepFailureMoment(const QString& folder) {
    // One that does not answer can't be asked for more than its picture.
    const Screenshot desktop = std::exchange(m_desktop, Screenshot());
    if (desktop.image().isNull())
        return;
    if (const SharedPtr<Application> application = liveApplication(&m_runner))
        m_failureMoment.keep(*application, desktop, folder, &m_result);
}

TraceView SuiteRun::traceView() {
    const auto ask = [this](const char* request) {
        const SharedPtr<Application> application = liveApplication(&m_runner);
        return application ? application->access().nativeRequest(QLatin1String(request), {})
                           : Outcome<QVariant>(QVariant());
    };
    TraceView view;
    view.answers = [this] {
        if (Interrupt::isTimeOut())
            m_runner.applications.startCall();
        const SharedPtr<Application> application = liveApplication(&m_runner);
        return application && application->access().ping(pingTimeout).has_value();
    };
    view.picture = [ask] {
        const Outcome<QVariant> picture = ask("desktopScreenshot");
        return picture ? Screenshot::fromVariant(*picture) : Screenshot();
    };
    view.objects = [this]() -> std::optional<Wire::ObjectListing> {
        const SharedPtr<Application> application = liveApplication(&m_runner);
        if (!application)
            return std::nullopt;
        Outcome<Wire::ObjectListing> listing = application->access().listing();
        return listing ? std::optional(std::move(*listing)) : std::nullopt;
    };
    view.lastPress = [ask] {
        const Outcome<QVariant> layout = ask("screenLayout");
        return layout ? lastPressOf(layout->toMap()) : std::nullopt;
    };
    view.output = [this] {
        QMap<QString, QByteArray> streams;
        const SharedPtr<Application> current = m_runner.applications.current();
        const auto programs = m_runner.applications.programs().ofInterest(
            current ? current->sharedProgram() : std::shared_ptr<StartedProgram>());
        for (const auto& program : programs) {
            const ChildOutput::News news = program->output().takeNews();
            const QString& name = program->start().name;
            streams[name + QStringLiteral("-stdout")] += news.standardOutput;
            streams[name + QStringLiteral("-stderr")] += news.standardError;
        }
        return streams;
    };
    return view;
}

void SuiteRun::endApplications() {
    Applications& applications = m_runner.applications;
    applications.work();
    m_runner.reportUnexpectedEnds();
    const SharedPtr<Application> current = applications.current();
    const auto programs = applications.programs().ofInterest(
        current ? current->sharedProgram() : std::shared_ptr<StartedProgram>());
    for (const QString& name : applications.endAll()) {
        m_result.addResult(TestResult::Warning, QStringLiteral("Application can't be ended"), name,
                           LineInfo());
    }
    // What crashed when it was asked to close.
    m_runner.reportUnexpectedEnds();
    if (caseHasFailed())
        attachOutput(programs);
}

void SuiteRun::attachOutput(const std::vector<std::shared_ptr<StartedProgram>>& programs) {
    QString error;
    const QFileInfo folder =
        attachmentResultsPath(m_runner.currentResultDirectory(), m_runner.testCasePath(), &error);
    for (const auto& program : programs) {
        const QString name = program->start().name;
        const std::pair<QString, QByteArray> streams[] = {
            {QStringLiteral("stdout"), program->output().standardOutput()},
            {QStringLiteral("stderr"), program->output().standardError()}};
        for (const auto& [stream, text] : streams) {
            if (text.isEmpty())
                continue;
            if (error.isEmpty())
                error = ensureResultPathExists(folder);
            const QFileInfo ownName(QStringLiteral("%1-%2.txt").arg(name, stream));
            QFile file;
            if (error.isEmpty() && !createTargetFile(folder.filePath(), ownName, &file))
                error = file.errorString();
            if (error.isEmpty() && !writeAll(&file, text, &error))
                file.remove();
            if (!error.isEmpty()) {
                qWarning("The output of '%s' can't be attached: %s", qUtf8Printable(name),
                         qUtf8Printable(error));
                return;
            }
            m_result.addAttachment(
                TestResult::OutputAttachment,
                QStringLiteral("What the application '%1' wrote to %2").arg(name, stream),
                file.fileName(), {});
        }
    }
}

bool SuiteRun::readScript(const QString& path, QString* text) {
    const Outcome<Utf8Text> content = readUtf8File(path);
    if (content && content->faultyLine == 0) {
        *text = content->text;
        return true;
    }
    const QString problem =
        content ? QStringLiteral("the file is not encoded in UTF-8") : content.error().text;
    m_result.addResult(TestResult::Fatal, QStringLiteral("Can't read test script"), problem,
                       LineInfo(path, content ? content->faultyLine : 0));
    return false;
}

bool SuiteRun::caseHasFailed() const {
    return std::any_of(resultTypes.begin(), resultTypes.end(), [this](const ResultTypeInfo& type) {
        return type.isFailure && m_result.count(QLatin1String(type.category)) > 0;
    });
}

}  // namespace Tamrix
