#include "runner/applications/privatedisplay.h"

#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QtEndian>

namespace Tamrix {

namespace {

constexpr int startTimeout = 20000;
constexpr int endTimeout = 2000;

/// Appends a length and the bytes, as files of cookies have them.
void appendCounted(QByteArray& entry, const QByteArray& bytes) {
    char length[2];
    qToBigEndian(static_cast<quint16>(bytes.size()), length);
    entry.append(length, sizeof(length));
    entry.append(bytes);
}

/// Writes a random cookie that fits every display. False when the file can't be written.
bool writeCookieFile(const QString& path) {
    QByteArray cookie(16, Qt::Uninitialized);
    for (char& byte : cookie)
        byte = static_cast<char>(QRandomGenerator::system()->bounded(256));
    // The family "wild", with an address and a number that don't matter.
    QByteArray entry("\xff\xff", 2);
    appendCounted(entry, {});
    appendCounted(entry, {});
    appendCounted(entry, "MIT-MAGIC-COOKIE-1");
    appendCounted(entry, cookie);
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly) &&
           file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
           file.write(entry) == entry.size() && file.flush();
}

/// Starts a helper program and waits until it has written a line, which comes back.
Outcome<QString> startHelper(const ProgramStart& start, std::unique_ptr<ChildProcess>* process) {
    Outcome<std::unique_ptr<ChildProcess>> started = ChildProcess::start(start);
    if (!started)
        return fail(started.error());
    *process = std::move(*started);
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < startTimeout) {
        const bool hasEnded = (*process)->hasEnded();
        if (hasEnded)
            (*process)->output()->waitForEnd(500);
        const QByteArray output = (*process)->output()->standardOutput();
        const int lineEnd = output.indexOf('\n');
        if (lineEnd > 0)
            return QString::fromLocal8Bit(output.left(lineEnd)).trimmed();
        if (hasEnded) {
            return fail(FailureKind::Ended, QStringLiteral("'%1' did not start: %2: %3")
                                                .arg(start.program, (*process)->endText(),
                                                     (*process)->output()->lastErrorLines(5)));
        }
        ::usleep(5000);
    }
    return fail(FailureKind::TimedOut, QStringLiteral("'%1' was not ready within %2 ms")
                                           .arg(start.program, QString::number(startTimeout)));
}

/// The path of a program that a private display needs.
Outcome<QString> findHelper(const QString& name, const QString& package) {
    const QString path = QStandardPaths::findExecutable(name);
    if (path.isEmpty()) {
        return fail(FailureKind::NotFound,
                    QStringLiteral("a display of its own needs the program '%1', which is not in "
                                   "PATH (Debian package %2)")
                        .arg(name, package));
    }
    return path;
}

void endHelper(ChildProcess* process) {
    if (!process || process->hasEnded())
        return;
    ::kill(process->pid(), SIGTERM);
    if (process->waitForEnd(endTimeout))
        return;
    ::kill(process->pid(), SIGKILL);
    process->waitForEnd(endTimeout);
}

}  // namespace

ProgramEnvironment displayEnvironment(const QString& display) {
    return {{QStringLiteral("DISPLAY"), display},
            {QStringLiteral("WAYLAND_DISPLAY"), QString()},
            {QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb")}};
}

Outcome<> PrivateDisplay::start(const QString& runId, const QString& folder) {
    const Outcome<QString> displayProgram =
        findHelper(QStringLiteral("Xvfb"), QStringLiteral("xvfb"));
    if (!displayProgram)
        return fail(displayProgram.error());
    const Outcome<QString> busProgram =
        findHelper(QStringLiteral("dbus-daemon"), QStringLiteral("dbus"));
    if (!busProgram)
        return fail(busProgram.error());
    ProgramStart display;
    display.program = *displayProgram;
    ProgramStart bus;
    bus.program = *busProgram;
    m_folder = folder;
    m_cookieFile = folder + QLatin1String("/cookie");
    if (!writeCookieFile(m_cookieFile))
        return fail(
            FailureKind::Failed,
            QStringLiteral("the display's cookie can't be written to '%1'").arg(m_cookieFile));

    // The run's mark with number 0: not that of an application.
    display.mark = runId + QLatin1String(":0");
    // The number of a display that is free goes to standard output.
    display.arguments = QStringList{QStringLiteral("-displayfd"),   QStringLiteral("1"),
                                    QStringLiteral("-screen"),      QStringLiteral("0"),
                                    QStringLiteral("1280x1024x24"), QStringLiteral("-nolisten"),
                                    QStringLiteral("tcp"),          QStringLiteral("-noreset"),
                                    QStringLiteral("-auth"),        m_cookieFile};
    display.signalAtRunnersEnd = SIGTERM;
    const Outcome<QString> number = startHelper(display, &m_display);
    if (!number)
        return fail(number.error());
    m_name = QLatin1Char(':') + *number;

    bus.arguments = QStringList{QStringLiteral("--session"), QStringLiteral("--nofork"),
                                QStringLiteral("--nopidfile"), QStringLiteral("--print-address")};
    // The services that the bus starts belong to the display.
    bus.mark = display.mark;
    bus.environment = environment();
    bus.signalAtRunnersEnd = SIGTERM;
    const Outcome<QString> address = startHelper(bus, &m_bus);
    if (!address)
        return fail(address.error());
    m_busAddress = *address;
    return {};
}

ProgramEnvironment PrivateDisplay::environment() const {
    ProgramEnvironment environment = displayEnvironment(m_name);
    environment.append({QStringLiteral("XAUTHORITY"), m_cookieFile});
    // What programs find or leave there belongs to a session.
    environment.append({QStringLiteral("XDG_RUNTIME_DIR"), m_folder});
    if (!m_busAddress.isEmpty())
        environment.append({QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_busAddress});
    return environment;
}

PrivateDisplay::~PrivateDisplay() {
    // What the bus started uses the display.
    endHelper(m_bus.get());
    endHelper(m_display.get());
    if (!m_cookieFile.isEmpty())
        ::unlink(m_cookieFile.toLocal8Bit().constData());
}

}  // namespace Tamrix
