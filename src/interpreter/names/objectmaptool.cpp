#include "interpreter/names/objectmaptool.h"

#include <sys/prctl.h>

#include <QElapsedTimer>
#include <QProcess>
#include <QStringList>
#include <algorithm>
#include <csignal>

#include "base/blocking.h"
#include "base/standardpath.h"
#include "base/wholetext.h"
#include "platform/objectmodel/objectmap.h"

namespace Tamrix {

namespace {

constexpr int pollInterval = 100;
constexpr int endTimeout = 1000;

/// The program ends with this process.
class ToolProcess : public QProcess {
protected:
    void setupChildProcess() override { ::prctl(PR_SET_PDEATHSIG, SIGKILL); }
};

/// False when the program could not be started or has not ended in time.
bool waitForEnd(QProcess& process, int timeout) {
    QElapsedTimer timer;
    timer.start();
    while (process.state() != QProcess::NotRunning && timer.elapsed() < timeout &&
           !isInterrupted()) {
        const auto left = static_cast<int>(timeout - timer.elapsed());
        process.waitForFinished(std::clamp(left, 1, pollInterval));
    }
    return process.state() == QProcess::NotRunning && process.error() != QProcess::FailedToStart;
}

QString textOf(const QByteArray& bytes) {
    return wholeUtf8(bytes).replace(QLatin1String("\r\n"), QLatin1String("\n"));
}

tl::unexpected<Failure> toolError(const QString& error) {
    return fail(FailureKind::Failed, QStringLiteral("Objectmaptool error: %1").arg(error));
}

}  // namespace

QString objectMapToolBinary() {
    return StandardPath::prefix() + QLatin1String("/lib/exec/objectmaptool");
}

Outcome<QMap<QString, ObjectName>> runObjectMapTool(const QString& path, const QByteArray& text,
                                                    int timeout) {
    QStringList arguments{QStringLiteral("--mode"), QStringLiteral("getEntryMap"),
                          QStringLiteral("--scriptMap"), QStringLiteral("--scriptedObjectMapPath"),
                          path};
    if (!text.isNull())
        arguments.append(QStringLiteral("--standardInput"));
    ToolProcess process;
    process.start(objectMapToolBinary(), arguments, QIODevice::ReadWrite);
    process.write(text);
    process.closeWriteChannel();
    // 1. A script that hangs has its limit.
    const bool hasEnded = BlockingSection::run([&] { return waitForEnd(process, timeout); });
    if (!hasEnded) {
        process.kill();
        process.waitForFinished(endTimeout);
        return fail(FailureKind::TimedOut, QStringLiteral("Failed to run objectmaptool"));
    }
    // 2. What is wrong with the script, the program says.
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return toolError(textOf(process.readAllStandardError()).trimmed());
    // 3. The entries, in the form of a plain map.
    QString faults;
    const QMap<QString, ObjectName> names =
        ObjectMap::parseSerializedMap(textOf(process.readAllStandardOutput()), &faults);
    if (!faults.isEmpty())
        return toolError(faults);
    return names;
}

}  // namespace Tamrix
