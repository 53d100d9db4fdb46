#include "wire/framechannel.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QtEndian>
#include <cerrno>
#include <cstring>

namespace Tamrix::Wire {

namespace {

/// Length, sequence, type.
constexpr int headSize = 4 + 4 + 2;

/// What is read from the socket at once.
constexpr int blockSize = 64 * 1024;

QString systemError() {
    return QString::fromLocal8Bit(std::strerror(errno));
}

/// Fills an address; false when the path is too long for one.
bool makeAddress(const QString& path, sockaddr_un* address, QString* error) {
    const QByteArray bytes = path.toLocal8Bit();
    std::memset(address, 0, sizeof(*address));
    address->sun_family = AF_UNIX;
    if (bytes.isEmpty() || static_cast<size_t>(bytes.size()) >= sizeof(address->sun_path)) {
        *error = QStringLiteral(
                     "the path '%1' is no path for a local socket: it has %2 bytes of "
                     "at most %3")
                     .arg(path, QString::number(bytes.size()),
                          QString::number(sizeof(address->sun_path) - 1));
        return false;
    }
    std::memcpy(address->sun_path, bytes.constData(), static_cast<size_t>(bytes.size()));
    return true;
}

int openSocket(QString* error) {
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        *error = QStringLiteral("no local socket: %1").arg(systemError());
    return descriptor;
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
    while (isOpen()) {
        const ssize_t count = ::recv(m_descriptor, block, sizeof(block), 0);
        if (count > 0) {
            m_received.append(block, static_cast<int>(count));
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
    return false;
}

std::optional<Frame> FrameChannel::takeFrame() {
    const int available = m_received.size() - m_taken;
    if (available < headSize)
        return std::nullopt;
    const char* const head = m_received.constData() + m_taken;
    const auto length = qFromBigEndian<quint32>(head);
    if (length > m_maximalBodySize) {
        close(QStringLiteral("a message of %1 bytes came, at most %2 are taken")
                  .arg(QString::number(length), QString::number(m_maximalBodySize)));
        m_received.clear();
        m_taken = 0;
        return std::nullopt;
    }
    if (static_cast<quint32>(available - headSize) < length)
        return std::nullopt;
    Frame frame;
    frame.sequence = qFromBigEndian<quint32>(head + 4);
    frame.type = static_cast<MessageType>(qFromBigEndian<quint16>(head + 8));
    frame.body = QByteArray(head + headSize, static_cast<int>(length));
    m_taken += headSize + static_cast<int>(length);
    // Taken frames are dropped now and then only: each time would move the rest each time.
    if (m_taken == m_received.size() || m_taken > blockSize) {
        m_received.remove(0, m_taken);
        m_taken = 0;
    }
    return frame;
}

bool FrameChannel::send(quint32 sequence, MessageType type, const QByteArray& body, int timeout) {
    if (!isOpen())
        return false;
    QByteArray bytes(headSize, Qt::Uninitialized);
    qToBigEndian(static_cast<quint32>(body.size()), bytes.data());
    qToBigEndian(sequence, bytes.data() + 4);
    qToBigEndian(static_cast<quint16>(type), bytes.data() + 8);
    bytes += body;

    QElapsedTimer timer;
    timer.start();
    int sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count = ::send(m_descriptor, bytes.constData() + sent,
                                     static_cast<size_t>(bytes.size() - sent), MSG_NOSIGNAL);
        if (count >= 0) {
            sent += static_cast<int>(count);
            continue;
        }
        if (errno == EINTR)
            continue;
        if (errno != EAGAIN && errno != EWOULDBLOCK) {
            close(QStringLiteral("the connection can't be written: %1").arg(systemError()));
            return false;
        }
        const int left = timeout - static_cast<int>(timer.elapsed());
        pollfd waiting{m_descriptor, POLLOUT, 0};
        if (left <= 0 || (::poll(&waiting, 1, left) == 0)) {
            close(QStringLiteral("the other side read nothing for %1 ms").arg(timeout));
            return false;
        }
    }
    return true;
}

int connectLocalSocket(const QString& path, QString* error) {
    sockaddr_un address;
    if (!makeAddress(path, &address, error))
        return -1;
    const int descriptor = openSocket(error);
    if (descriptor < 0)
        return -1;
    if (::connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
        *error = QStringLiteral("no connection to '%1': %2").arg(path, systemError());
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}

int listenLocalSocket(const QString& path, QString* error) {
    sockaddr_un address;
    if (!makeAddress(path, &address, error))
        return -1;
    const int descriptor = openSocket(error);
    if (descriptor < 0)
        return -1;
    if (::bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0 ||
        ::chmod(address.sun_path, S_IRUSR | S_IWUSR) != 0 || ::listen(descriptor, 64) != 0) {
        *error = QStringLiteral("can't listen at '%1': %2").arg(path, systemError());
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}

}  // namespace Tamrix::Wire
