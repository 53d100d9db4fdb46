#include "e2e/terminalsession.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <csignal>
#include <cstdlib>
#include <vector>

namespace Tamrix::Test {

namespace {

constexpr int patienceMilliseconds = 300'000;

}  // namespace

TerminalSession::TerminalSession(const QString& program, const QStringList& arguments) {
    QList<QByteArray> words{QFile::encodeName(program)};
    for (const QString& argument : arguments)
        words.append(argument.toLocal8Bit());
    std::vector<char*> pointers;
    for (QByteArray& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    m_process = ::forkpty(&m_terminal, nullptr, nullptr, nullptr);
    if (m_process == 0) {
        ::setenv("TERM", "xterm", 1);
        ::execv(pointers[0], pointers.data());
        ::_exit(127);
    }
    if (m_process < 0)
        ADD_FAILURE() << "no terminal to be had";
}

TerminalSession::~TerminalSession() {
    if (m_terminal >= 0)
        ::close(m_terminal);
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
}

void TerminalSession::type(const QByteArray& keys) const {
    EXPECT_EQ(::write(m_terminal, keys.constData(), size_t(keys.size())), keys.size());
}

bool TerminalSession::read(int timeout) {
    pollfd waited{m_terminal, POLLIN, 0};
    if (::poll(&waited, 1, timeout) <= 0)
        return true;
    char buffer[4096];
    const ssize_t count = ::read(m_terminal, buffer, sizeof buffer);
    if (count <= 0)
        return false;
    m_screen.append(buffer, int(count));
    return true;
}

bool TerminalSession::waitFor(const QByteArray& text) {
    QElapsedTimer timer;
    timer.start();
    while (true) {
        const int place = m_screen.indexOf(text, m_seen);
        if (place >= 0) {
            m_seen = place + text.size();
            return true;
        }
        if (timer.elapsed() > patienceMilliseconds || !read(100))
            return false;
    }
}

int TerminalSession::finish() {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < patienceMilliseconds && read(100)) {
    }
    int status = 0;
    if (timer.elapsed() >= patienceMilliseconds || ::waitpid(m_process, &status, 0) != m_process)
        return -1;
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace Tamrix::Test
