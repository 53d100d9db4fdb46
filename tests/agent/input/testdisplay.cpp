#include "agent/input/testdisplay.h"

#include <sys/prctl.h>

#include <QFileInfo>
#include <QThread>
#include <csignal>

namespace Tamrix {

void TestDisplay::Server::setupChildProcess() {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
}

TestDisplay::TestDisplay(const QString& platform, const QString& screen,
                         const QStringList& options) {
    m_server.setStandardErrorFile(QProcess::nullDevice());
    if (platform == "xcb")
        startXvfb(screen, options);
    else if (platform == "wayland")
        startWeston();
}

void TestDisplay::startWeston() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_RUNTIME_DIR", m_folder.path());
    m_server.setProcessEnvironment(environment);
    m_server.start("weston", {"--backend=headless-backend.so", "--socket=weston", "--idle-time=0",
                              "--width=1280", "--height=1024"});
    const QString socket = m_folder.filePath("weston");
    for (int look = 0; look < 10000 && m_name.isEmpty(); ++look) {
        if (QFileInfo::exists(socket))
            m_name = socket;
        else
            QThread::msleep(10);
    }
}

void TestDisplay::startXvfb(const QString& screen, const QStringList& options) {
    m_server.start(
        QStringLiteral("Xvfb"),
        QStringList{QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                    QStringLiteral("0"), screen, QStringLiteral("-nolisten"), QStringLiteral("tcp"),
                    QStringLiteral("-noreset")} +
            options);
    if (!m_server.waitForStarted())
        return;
    QByteArray line;
    while (!line.endsWith('\n') && m_server.waitForReadyRead(100'000))
        line += m_server.readAllStandardOutput();
    if (!line.trimmed().isEmpty())
        m_name = QStringLiteral(":") + QString::fromLatin1(line.trimmed());
}

void TestDisplay::kill() {
    m_server.kill();
    m_server.waitForFinished();
}

TestDisplay::~TestDisplay() {
    if (m_server.state() == QProcess::NotRunning)
        return;
    m_server.terminate();
    m_server.waitForFinished();
}

}  // namespace Tamrix
