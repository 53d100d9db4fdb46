#include "base/bytestream.h"

#include <poll.h>
#include <unistd.h>

#include <QString>
#include <array>
#include <cerrno>

#include "base/filewriting.h"

namespace Tamrix {

ByteReader::State DescriptorReader::read(QByteArray* bytes) {
    // Asked each time instead of made non-blocking: standard input is shared with who started us.
    pollfd watched{m_descriptor, POLLIN, 0};
    while (::poll(&watched, 1, 0) > 0) {
        std::array<char, 65536> buffer;
        const ssize_t count = ::read(m_descriptor, buffer.data(), buffer.size());
        if (count > 0)
            bytes->append(buffer.data(), static_cast<int>(count));
        else if (count == 0 || (errno != EINTR && errno != EAGAIN))
            return State::Ended;
        if (count < static_cast<ssize_t>(buffer.size()))
            break;
    }
    return State::Open;
}

bool DescriptorWriter::write(const QByteArray& bytes) {
    QString reason;
    return writeAll(m_descriptor, bytes, &reason);
}

bool DescriptorWriter::isOpen() const {
    pollfd watched{m_descriptor, 0, 0};
    return ::poll(&watched, 1, 0) <= 0 || (watched.revents & (POLLERR | POLLHUP | POLLNVAL)) == 0;
}

}  // namespace Tamrix
