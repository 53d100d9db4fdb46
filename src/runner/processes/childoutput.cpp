#include "runner/processes/childoutput.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <QStringList>
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <iterator>
#include <utility>

#include "base/blocking.h"
#include "base/wholetext.h"

namespace Tamrix {

namespace {

/// How long the thread may take to read what is there.
constexpr std::chrono::seconds turnPatience(10);

bool hasUnread(const int (&pipes)[2]) {
    return std::any_of(std::begin(pipes), std::end(pipes), [](int pipe) {
        int size = 0;
        return ::ioctl(pipe, FIONREAD, &size) == 0 && size > 0;
    });
}

}  // namespace

void OutputTail::append(const char* bytes, qint64 size) {
    m_bytes.append(bytes, static_cast<int>(size));
    m_total += size;
    // Not each time, since that moves all that is kept.
    if (m_bytes.size() > 2 * limit)
        m_bytes.remove(0, static_cast<int>(m_bytes.size() - limit));
}

void OutputTail::shrink(qint64 size) {
    m_kept = std::min(m_kept, size);
    m_bytes = m_bytes.right(static_cast<int>(m_kept));
    m_bytes.squeeze();
}

QByteArray OutputTail::content() const {
    return lastOf(m_total);
}

QByteArray OutputTail::takeNew() {
    const qint64 count = m_total - std::exchange(m_taken, m_total);
    return lastOf(count);
}

QByteArray OutputTail::lastOf(qint64 count) const {
    if (count <= m_kept)
        return m_bytes.right(static_cast<int>(count));
    return "[" + QByteArray::number(count - m_kept) + " bytes before this are left out]\n" +
           m_bytes.right(static_cast<int>(m_kept));
}

ChildOutput::ChildOutput(int standardOutput, int standardError)
    : m_descriptors{standardOutput, standardError}, m_wake(::eventfd(0, EFD_CLOEXEC)) {
    for (const int descriptor : m_descriptors)
        ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
    // Signals are the script thread's business.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    m_thread = std::thread([this] { read(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

ChildOutput::~ChildOutput() {
    join();
}

void ChildOutput::join() {
    if (!m_thread.joinable())
        return;
    const std::uint64_t one = 1;
    // An event counter takes eight bytes at once.
    [[maybe_unused]] const ssize_t written = ::write(m_wake, &one, sizeof(one));
    m_thread.join();
    for (const int descriptor : m_descriptors)
        ::close(descriptor);
    ::close(m_wake);
}

bool ChildOutput::settle() {
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_hasEnded)
            return false;
    }
    join();
    for (OutputTail& tail : m_tails)
        tail.shrink(OutputTail::limit);
    return true;
}

void ChildOutput::keepLittle() {
    for (OutputTail& tail : m_tails)
        tail.shrink(littleSize);
}

void ChildOutput::read() {
    std::array<pollfd, 3> waiting{
        {{m_descriptors[0], POLLIN, 0}, {m_descriptors[1], POLLIN, 0}, {m_wake, POLLIN, 0}}};
    bool isAskedToEnd = false;
    while (!isAskedToEnd && (waiting[0].fd >= 0 || waiting[1].fd >= 0)) {
        if (::poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR)
            break;
        isAskedToEnd = waiting[2].revents != 0;
        for (size_t stream = 0; stream < 2; ++stream) {
            if (waiting[stream].fd >= 0 && (waiting[stream].revents != 0 || isAskedToEnd) &&
                !readStream(waiting[stream].fd, m_tails[stream]))
                waiting[stream].fd = -1;
        }
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_hasEnded = true;
}

bool ChildOutput::readStream(int descriptor, OutputTail& tail) {
    std::array<char, 16 * 1024> block;
    // A bound, so that one busy stream does not keep the other one waiting.
    for (int count = 0; count < 16; ++count) {
        // Also for the read: what is in the pipe no more has been kept when somebody looks.
        const std::lock_guard<std::mutex> lock(m_mutex);
        const ssize_t size = ::read(descriptor, block.data(), block.size());
        if (size > 0) {
            tail.append(block.data(), size);
        } else if (size == 0 || (errno != EINTR && errno != EAGAIN)) {
            return false;
        } else if (errno == EAGAIN) {
            return true;
        }
    }
    return true;
}

QByteArray ChildOutput::standardOutput() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_tails[0].content();
}

QByteArray ChildOutput::standardError() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_tails[1].content();
}

ChildOutput::News ChildOutput::takeNews() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return {m_tails[0].takeNew(), m_tails[1].takeNew()};
}

QString ChildOutput::lastErrorLines(int count) const {
    const QString text = wholeLocal8Bit(standardError()).trimmed();
    const QStringList lines = text.split(QLatin1Char('\n'));
    return lines.mid(std::max(0, lines.size() - count)).join(QLatin1Char('\n'));
}

void ChildOutput::waitForEnd(int milliseconds) const {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    const auto lastTime = end + turnPatience;
    while (true) {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            const auto now = Clock::now();
            // What a program has written stays in the pipe until the thread, which may have to wait
            // for its turn on a busy machine, has read it.
            if (m_hasEnded || now >= lastTime || (now >= end && !hasUnread(m_descriptors)))
                return;
        }
        blockingSleep(2000);
    }
}

}  // namespace Tamrix
