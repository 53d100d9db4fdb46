#include "interpreter/debugger/lineprotocol/commandinput.h"

#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>
#include <cerrno>
#include <cstdio>
#include <utility>

namespace Tamrix {

namespace {

/// How often a wait asks whether it is to be given up, in milliseconds.
constexpr int interruptInterval = 100;

}  // namespace

bool waitForStandardInput(const std::function<bool()>& isInterrupted) {
    // Without an application nothing else is to be done meanwhile, and a closed descriptor never
    // becomes readable: reading tells what is the matter.
    if (!QCoreApplication::instance() || ::fcntl(STDIN_FILENO, F_GETFD) < 0)
        return true;
    QEventLoop loop;
    QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &loop, [&loop] { loop.quit(); });
    bool interrupted = false;
    QTimer timer;
    if (isInterrupted) {
        QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
            interrupted = isInterrupted();
            if (interrupted)
                loop.quit();
        });
        timer.start(interruptInterval);
    }
    loop.exec();
    return !interrupted;
}

StandardInput::StandardInput(std::function<bool()> isInterrupted)
    : m_isInterrupted(std::move(isInterrupted)) {}

CommandInput::Line StandardInput::readLine(const std::string& prompt) {
    std::fwrite(prompt.data(), 1, prompt.size(), stdout);
    std::fflush(stdout);
    Line line;
    if (!waitForStandardInput(m_isInterrupted))
        return {End::Interrupted, {}};
    while (true) {
        char byte = 0;
        const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
        if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
            if (!waitForStandardInput(m_isInterrupted))
                return {End::Interrupted, {}};
            continue;
        }
        if (count <= 0)
            return {End::OfInput, {}};
        if (byte == '\n')
            return line;
        if (line.text.size() < maximalSize)
            line.text += byte;
        else
            line.end = End::TooLong;
    }
}

}  // namespace Tamrix
