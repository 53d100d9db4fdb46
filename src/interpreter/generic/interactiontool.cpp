#include "interpreter/generic/interactiontool.h"

#include <sys/prctl.h>

#include <QProcess>
#include <csignal>

#include "base/blocking.h"
#include "base/environment.h"

namespace Tamrix {

namespace {

constexpr int startTimeout = 30000;
constexpr int endTimeout = 1000;
constexpr int pollInterval = 100;

/// The exit codes of the program.
constexpr struct {
    int exitCode;
    TestInteraction::Button button;
} exitCodes[] = {
    {21, TestInteraction::Ok},
    {22, TestInteraction::Cancel},
    {24, TestInteraction::Yes},
    {28, TestInteraction::No},
};

/// A dialog that ends with this process: nobody waits for its answer then.
class DialogProcess : public QProcess {
protected:
    void setupChildProcess() override { ::prctl(PR_SET_PDEATHSIG, SIGTERM); }
};

/// Waits for the end without limit, unless the run is to end before. False when it has not ended.
bool waitForAnswer(QProcess& process) {
    while (process.state() != QProcess::NotRunning && !isInterrupted())
        process.waitForFinished(pollInterval);
    return process.state() == QProcess::NotRunning;
}

tl::unexpected<Failure> failure(const QString& errors, const QString& otherwise) {
    return fail(FailureKind::Failed, QStringLiteral("Failed to display testInteraction dialog: ") +
                                         (errors.isEmpty() ? otherwise : errors));
}

}  // namespace

QString testInteractionBinary() {
    return Environment::getVariable(QStringLiteral("TAMRIX_PREFIX")) +
           QLatin1String("/lib/exec/testinteraction");
}

Outcome<InteractionAnswer> executeTestInteractionTool(const QStringList& arguments) {
    DialogProcess process;
    process.setProcessChannelMode(QProcess::SeparateChannels);
    // 1. The person takes all the time that it takes.
    process.start(testInteractionBinary(), arguments, QIODevice::ReadOnly | QIODevice::Text);
    const bool hasFinished = BlockingSection::run(
        [&] { return process.waitForStarted(startTimeout) && waitForAnswer(process); });
    if (isInterrupted()) {
        process.kill();
        process.waitForFinished(endTimeout);
        return failure(QString(), QStringLiteral("the run was interrupted"));
    }
    // 2. The answer.
    InteractionAnswer answer;
    answer.text = QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    const QString errors = QString::fromUtf8(process.readAllStandardError());
    // 3. The button.
    if (hasFinished && process.exitStatus() == QProcess::NormalExit) {
        for (const auto& row : exitCodes) {
            if (row.exitCode == process.exitCode()) {
                answer.button = row.button;
                return answer;
            }
        }
        return failure(errors,
                       QStringLiteral("'%1' exited with code %2")
                           .arg(testInteractionBinary(), QString::number(process.exitCode())));
    }
    // 4. Or what went wrong.
    return failure(errors,
                   QStringLiteral("'%1': %2").arg(testInteractionBinary(), process.errorString()));
}

Outcome<> startTestInteractionTool(const QStringList& arguments) {
    if (QProcess::startDetached(testInteractionBinary(), arguments))
        return {};
    return failure(QString(), QStringLiteral("'%1' can't be started").arg(testInteractionBinary()));
}

}  // namespace Tamrix
