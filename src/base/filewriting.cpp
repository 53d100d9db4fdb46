#include "base/filewriting.h"

#include <poll.h>
#include <unistd.h>

#include <QFileDevice>
#include <cerrno>

namespace Tamrix {

bool writeAll(QFileDevice* file, const QByteArray& bytes, QString* error) {
    if (!file->flush()) {
        *error = file->errorString();
        return false;
    }
    return writeAll(file->handle(), bytes, error);
}

bool writeAll(int descriptor, const QByteArray& bytes, QString* error) {
    const char* data = bytes.constData();
    auto left = static_cast<std::size_t>(bytes.size());
    while (left > 0) {
        const ssize_t written = ::write(descriptor, data, left);
        if (written >= 0) {
            data += written;
            left -= static_cast<std::size_t>(written);
        } else if (errno == EAGAIN) {
            // Whoever started this program may have made its standard output non-blocking.
            pollfd ready{descriptor, POLLOUT, 0};
            ::poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            *error = qt_error_string(errno);
            return false;
        }
    }
    return true;
}

}  // namespace Tamrix
