#include "wire/framechannel.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QtEndian>
#include <algorithm>
#include <cerrno>
#include <cstring>

namespace Tamrix::Wire {

namespace {

/// Length, sequence, type.
constexpr int headSize = 4 + 4 + 2;

/// What is read from the socket at once.
constexpr int blockSize = 64 * 1024;
/// How many blocks are read in a row: a peer that sends all the time must not keep the reader.
constexpr int blockCount = 64;

QByteArray encodedFrame(quint32 sequence, MessageType type, const QByteArray& body) {
    QByteArray bytes(headSize, Qt::Uninitialized);
    qToBigEndian(static_cast<quint32>(body.size()), bytes.data());
    qToBigEndian(sequence, bytes.data() + 4);
    qToBigEndian(static_cast<quint16>(type), bytes.data() + 8);
    return bytes + body;
}

QString longMessageText(qint64 length, quint32 limit) {
    return QStringLiteral("a message of %1 bytes came, at most %2 are taken")
        .arg(QString::number(length), QString::number(limit));
}

QString systemError() {
    return QString::fromLocal8Bit(std::strerror(errno));
}

/// Fails when the path is too long for an address.
Outcome<sockaddr_un> makeAddress(const QString& path) {
    const QByteArray bytes = path.toLocal8Bit();
    sockaddr_un address;
    std::memset(&address, 0, sizeof(address));
    address.sun_family = AF_UNIX;
    if (bytes.isEmpty() || static_cast<size_t>(bytes.size()) >= sizeof(address.sun_path)) {
        return fail(FailureKind::BadArgument,
                    QStringLiteral("the path '%1' is no path for a local socket: it has %2 bytes "
                                   "of at most %3")
                        .arg(path, QString::number(bytes.size()),
                             QString::number(sizeof(address.sun_path) - 1)));
    }
    std::memcpy(address.sun_path, bytes.constData(), static_cast<size_t>(bytes.size()));
    return address;
}

/// A socket that `attach` connects or binds to the address; `failure` is what it says, with the
/// path and the system's reason, when it can't.
Outcome<int> openSocket(const QString& path, const QString& failure,
                        bool (*attach)(int descriptor, const sockaddr_un& address)) {
    const Outcome<sockaddr_un> address = makeAddress(path);
    if (!address)
        return fail(address.error());
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return fail(FailureKind::Failed, QStringLiteral("no local socket: %1").arg(systemError()));
    if (attach(descriptor, *address))
        return descriptor;
    const QString reason = systemError();
    ::close(descriptor);
    return fail(FailureKind::Failed, failure.arg(path, reason));
}

}  // namespace

FrameChannel::FrameChannel(int descriptor) : m_descriptor(descriptor) {
    if (m_descriptor < 0)
        return;
    ::fcntl(m_descriptor, F_SETFD, FD_CLOEXEC);
    ::fcntl(m_descriptor, F_SETFL, ::fcntl(m_descriptor, F_GETFL) | O_NONBLOCK);
}

FrameChannel::~FrameChannel() {
    close();
}

void FrameChannel::close(const QString& reason) {
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
    if (m_errorText.isEmpty())
        m_errorText = reason;
}

bool FrameChannel::receive() {
    char block[blockSize];
    for (int blocks = 0; isOpen() && blocks < blockCount;) {
        const ssize_t count = ::recv(m_descriptor, block, sizeof(block), 0);
        if (count > 0) {
            ++blocks;
            const auto skipped = std::min(m_skippedSize, static_cast<quint32>(count));
            m_skippedSize -= skipped;
            m_received.append(block + skipped, static_cast<int>(count - skipped));
            // A frame too long to be taken is found before the rest of it is read.
            if (m_received.size() - m_taken >= headSize &&
                qFromBigEndian<quint32>(m_received.constData() + m_taken) > m_maximalBodySize)
                return true;
            if (count < static_cast<ssize_t>(sizeof(block)))
                return true;
        } else if (count == 0) {
            close(QStringLiteral("the other side closed the connection"));
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            return true;
        } else if (errno != EINTR) {
            close(QStringLiteral("the connection can't be read: %1").arg(systemError()));
        }
    }
    return isOpen();
}

void FrameChannel::dropTaken() {
    // Now and then only: each time would move the rest each time.
    if (m_taken < m_received.size() && m_taken <= blockSize)
        return;
    m_received.remove(0, m_taken);
    m_taken = 0;
    // What a large message needed is not kept for small ones.
    if (m_received.isEmpty() && m_received.capacity() > blockCount * blockSize / 4)
        m_received.clear();
}

Frame FrameChannel::failLongAnswer(quint32 length) {
    Frame frame;
    frame.sequence = qFromBigEndian<quint32>(m_received.constData() + m_taken + 4);
    frame.type = MessageType::Failure;
    frame.body = encode(
        Failure{FailureKind::Failed, QStringLiteral("The application's answer is too long: ") +
                                         longMessageText(length, m_maximalBodySize)});
    m_taken += headSize;
    const auto here = std::min(length, static_cast<quint32>(m_received.size() - m_taken));
    m_taken += static_cast<int>(here);
    m_skippedSize = length - here;
    dropTaken();
    return frame;
}

std::optional<Frame> FrameChannel::takeFrame() {
    const int available = m_received.size() - m_taken;
    if (available < headSize)
        return std::nullopt;
    const char* const head = m_received.constData() + m_taken;
    const auto length = qFromBigEndian<quint32>(head);
    const auto type = static_cast<MessageType>(qFromBigEndian<quint16>(head + 8));
    if (length > m_maximalBodySize) {
        if (m_longAnswersFail && type == MessageType::Reply)
            return failLongAnswer(length);
        close(longMessageText(length, m_maximalBodySize));
        m_received.clear();
        m_taken = 0;
        return std::nullopt;
    }
    if (static_cast<quint32>(available - headSize) < length)
        return std::nullopt;
    Frame frame;
    frame.sequence = qFromBigEndian<quint32>(head + 4);
    frame.type = type;
    frame.body = QByteArray(head + headSize, static_cast<int>(length));
    m_taken += headSize + static_cast<int>(length);
    dropTaken();
    return frame;
}

bool FrameChannel::enqueue(quint32 sequence, MessageType type, const QByteArray& body) {
    if (!isOpen())
        return false;
    // The other side would close the connection.
    if (type == MessageType::Reply && static_cast<quint32>(body.size()) > maximalBodySize) {
        const Failure failure{
            FailureKind::Failed,
            QStringLiteral("The application's answer is too long: it has %1 bytes of at most %2")
                .arg(QString::number(body.size()), QString::number(maximalBodySize))};
        return enqueue(sequence, MessageType::Failure, encode(failure));
    }
    const QByteArray bytes = encodedFrame(sequence, type, body);
    if (hasQueued()) {
        m_queued.append(bytes);
    } else {
        m_queued = bytes;
        m_sent = 0;
    }
    return flush();
}

bool FrameChannel::flush() {
    while (isOpen() && hasQueued()) {
        const ssize_t count = ::send(m_descriptor, m_queued.constData() + m_sent,
                                     static_cast<size_t>(m_queued.size() - m_sent), MSG_NOSIGNAL);
        if (count >= 0)
            m_sent += static_cast<int>(count);
        else if (errno == EAGAIN || errno == EWOULDBLOCK)
            return true;
        else if (errno != EINTR)
            close(QStringLiteral("the connection can't be written: %1").arg(systemError()));
    }
    m_queued.clear();
    m_sent = 0;
    return isOpen();
}

bool FrameChannel::send(quint32 sequence, MessageType type, const QByteArray& body, int timeout) {
    if (!enqueue(sequence, type, body))
        return false;
    QElapsedTimer timer;
    timer.start();
    while (hasQueued()) {
        const int left = timeout - static_cast<int>(timer.elapsed());
        pollfd waiting{m_descriptor, POLLOUT, 0};
        if (left <= 0 || (::poll(&waiting, 1, left) == 0)) {
            close(QStringLiteral("the other side read nothing for %1 ms").arg(timeout));
            return false;
        }
        if (!flush())
            return false;
    }
    return isOpen();
}

Outcome<int> connectLocalSocket(const QString& path) {
    return openSocket(path, QStringLiteral("no connection to '%1': %2"),
                      [](int descriptor, const sockaddr_un& address) {
                          return ::connect(descriptor, reinterpret_cast<const sockaddr*>(&address),
                                           sizeof(address)) == 0;
                      });
}

Outcome<int> listenLocalSocket(const QString& path) {
    return openSocket(path, QStringLiteral("can't listen at '%1': %2"),
                      [](int descriptor, const sockaddr_un& address) {
                          return ::bind(descriptor, reinterpret_cast<const sockaddr*>(&address),
                                        sizeof(address)) == 0 &&
                                 ::chmod(address.sun_path, S_IRUSR | S_IWUSR) == 0 &&
                                 ::listen(descriptor, 64) == 0;
                      });
}

}  // namespace Tamrix::Wire
