#include "agent/input/testdisplay.h"

#include <sys/prctl.h>

#include <csignal>

namespace Tamrix {

void TestDisplay::Server::setupChildProcess() {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
}

TestDisplay::TestDisplay() {
    m_server.setStandardErrorFile(QProcess::nullDevice());
    m_server.start(
        QStringLiteral("Xvfb"),
        {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
         QStringLiteral("0"), QStringLiteral("1280x1024x24"), QStringLiteral("-nolisten"),
         QStringLiteral("tcp"), QStringLiteral("-noreset")});
    if (!m_server.waitForStarted())
        return;
    QByteArray line;
    while (!line.endsWith('\n') && m_server.waitForReadyRead(20000))
        line += m_server.readAllStandardOutput();
    if (!line.trimmed().isEmpty())
        m_name = QStringLiteral(":") + QString::fromLatin1(line.trimmed());
}

TestDisplay::~TestDisplay() {
    m_server.terminate();
    m_server.waitForFinished();
}

}  // namespace Tamrix
