#include "runner/applications/foreigntoolkit.h"

#include <QFile>
#include <QRegularExpression>
#include <algorithm>
#include <string_view>
#include <thread>
#include <utility>

#include "base/environment.h"
#include "runner/applications/application.h"

namespace Tamrix {

namespace {

/// What programs may be made with instead, by how a library's file is called.
const struct {
    const char* library;
    const char* toolkit;
} foreignLibraries[] = {
    {"/libQtCore.so.4", "Qt 4"},     {"/libgtk-4.so", "GTK 4"}, {"/libgtk-3.so", "GTK 3"},
    {"/libgtk-x11-2.0.so", "GTK 2"}, {"/libtk8.", "Tk"},        {"/libfltk.so", "FLTK"},
};

/// What Qt tells of its own build: "Qt 6.4.2 (x86_64-little_endian-lp64 static release build; by
/// ...".
constexpr std::string_view buildName = "Qt ";
constexpr std::string_view staticBuild = "-little_endian-lp64 static ";

/// A version of Qt with an agent.
struct DrivenQt {
    int major;
    /// Qt loads plug-ins that were built with its own minor version or an earlier one.
    int oldestMinor;
    const char* agent;
};
constexpr DrivenQt drivenVersions[] = {{5, 15, "/lib/libtamrixagent.so"},
                                       {6, 4, "/lib/libtamrixagent-qt6.so"}};

/// Whether more wants to run than there are processors: a program that waits for another one, as
/// for its X server, waits for long then.
bool isMachineBusy() {
    QFile file(QStringLiteral("/proc/loadavg"));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    // "0.20 0.18 0.12 RUNNING/ALL LAST"
    const QByteArray running = file.readLine().split(' ').value(3).split('/').value(0);
    return running.toInt() > static_cast<int>(std::thread::hardware_concurrency());
}

bool hasAgent(const QByteArray& maps) {
    return maps.contains("/libtamrixagent.so") || maps.contains("/libtamrixagent-qt6.so");
}

QByteArray mapsOf(pid_t process) {
    QFile file(QStringLiteral("/proc/%1/maps").arg(process));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The Qt of a process, as the file of its core library is called.
struct LoadedQt {
    int major = 0;
    /// -1 when the file does not tell.
    int minor = -1;
    QString version;
};

LoadedQt loadedQt(const QByteArray& maps) {
    static const QRegularExpression s_library(
        QStringLiteral("/libQt([56])Core\\.so(?:\\.\\d+\\.(\\d+))?(\\.\\d+)?"));
    const QRegularExpressionMatch match = s_library.match(QString::fromLocal8Bit(maps));
    LoadedQt qt;
    qt.version = match.captured(1);
    qt.major = qt.version.toInt();
    if (match.capturedLength(2) > 0) {
        qt.minor = match.captured(2).toInt();
        qt.version += QLatin1Char('.') + match.captured(2) + match.captured(3);
    }
    return qt;
}

QString obstacleOf(const LoadedQt& qt, const QByteArray& maps) {
    const DrivenQt& driven = drivenVersions[qt.major == 6 ? 1 : 0];
    if (qt.minor >= 0 && qt.minor < driven.oldestMinor)
        return QStringLiteral(
                   "it is a program with Qt %1, and agents for Qt %2 need %2.%3 or later")
            .arg(qt.version, QString::number(driven.major), QString::number(driven.oldestMinor));
    const QString prefix = Environment::getVariable(QLatin1String(prefixVariable));
    if (!QFile::exists(prefix + QLatin1String(driven.agent)))
        return QStringLiteral(
                   "it is a program with Qt %1, and this installation has no agent for "
                   "Qt %2")
            .arg(qt.version, QString::number(driven.major));
    // Qt loads the plug-ins that the environment names right after that of the platform.
    // One that took ours without the agent is not to be touched itself, but may start others.
    if (!maps.contains("/platforms/lib") || maps.contains("/libtamrixagentplugin"))
        return {};
    if (maps.contains("/libtamrixhook.so"))
        return QStringLiteral(
                   "it is a program with Qt %1 that takes neither the plug-in that "
                   "QT_QPA_GENERIC_PLUGINS names nor the preloaded hook")
            .arg(qt.version);
    return QStringLiteral(
               "it is a program with Qt %1 that takes no plug-in from QT_PLUGIN_PATH and "
               "QT_QPA_GENERIC_PLUGINS; hook=\"preload\" in config.xml may get the agent "
               "into it")
        .arg(qt.version);
}

}  // namespace

AgentProspect agentProspect(const QByteArray& maps) {
    if (hasAgent(maps))
        return {true, {}};
    const LoadedQt qt = loadedQt(maps);
    if (qt.major != 0) {
        const QString obstacle = obstacleOf(qt, maps);
        return {obstacle.isEmpty(), obstacle};
    }
    for (const auto& [library, toolkit] : foreignLibraries) {
        if (maps.contains(library))
            return {false, QStringLiteral("it is a program with %1, and only programs with Qt 5 or "
                                          "Qt 6 take an agent")
                               .arg(QLatin1String(toolkit))};
    }
    return {};
}

QString staticQtVersion(const QString& programFile) {
    QFile file(programFile);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const uchar* const data = file.map(0, file.size());
    if (!data)
        return {};
    const std::string_view bytes(reinterpret_cast<const char*>(data),
                                 static_cast<size_t>(file.size()));
    const size_t build = bytes.find(staticBuild);
    const size_t begin = build == std::string_view::npos ? build : bytes.rfind(buildName, build);
    if (begin == std::string_view::npos)
        return {};
    static const QRegularExpression s_version(QStringLiteral("^Qt (\\d+\\.\\d+\\.\\d+) \\("));
    return s_version
        .match(QString::fromLatin1(bytes.data() + begin, static_cast<int>(build - begin)))
        .captured(1);
}

QString agentObstacle(const std::vector<pid_t>& processes) {
    QString found;
    for (const pid_t process : processes) {
        const AgentProspect prospect = agentProspect(mapsOf(process));
        if (prospect.isPossible)
            return {};
        if (found.isEmpty())
            found = prospect.obstacle;
        if (!found.isEmpty())
            continue;
        const QString version = staticQtVersion(QStringLiteral("/proc/%1/exe").arg(process));
        if (!version.isEmpty())
            found = QStringLiteral(
                        "it is a program with Qt %1 linked statically, into which no "
                        "plug-in can be loaded")
                        .arg(version);
    }
    return found;
}

bool isAgentLoaded(const std::vector<pid_t>& processes) {
    return std::any_of(processes.begin(), processes.end(),
                       [](pid_t process) { return hasAgent(mapsOf(process)); });
}

bool ForeignToolkitWatch::areBusy(const std::vector<pid_t>& processes) {
    bool isAnyRunnable = false;
    qint64 time = 0;
    for (const pid_t process : processes) {
        const QByteArray state = processState(process);
        isAnyRunnable = isAnyRunnable || state == "R" || state == "D";
        time += std::max<qint64>(cpuTime(process), 0);
    }
    const qint64 used = time - std::exchange(m_cpuTime, time);
    return isAnyRunnable || used > lookInterval / 4 || isMachineBusy();
}

QString ForeignToolkitWatch::look(const std::vector<pid_t>& processes) {
    m_nextLook.setRemainingTime(lookInterval);
    const bool isBusy = areBusy(processes);
    const QString obstacle = agentObstacle(processes);
    if (obstacle != m_seen) {
        m_seen = obstacle;
        m_sure.setRemainingTime(std::max<qint64>(patience, 2 * m_sinceStart.elapsed()));
        m_latest.setRemainingTime(busyPatience);
    } else if (isBusy && !m_latest.hasExpired()) {
        m_sure.setRemainingTime(std::max<qint64>(patience, m_sure.remainingTime()));
    }
    return m_sure.hasExpired() ? m_seen : QString();
}

}  // namespace Tamrix
