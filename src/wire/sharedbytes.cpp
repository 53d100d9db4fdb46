#include "wire/sharedbytes.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <limits>

namespace Tamrix::Wire {

namespace {

/// Calls `step` with what is done and what is left until all is done; false when it fails.
template <typename Step>
bool inSteps(qint64 size, Step step) {
    for (qint64 done = 0; done < size;) {
        const ssize_t count = step(done, static_cast<std::size_t>(size - done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        done += count;
    }
    return true;
}

}  // namespace

SharedBytes::~SharedBytes() {
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

QString SharedBytes::path() {
    if (m_descriptor < 0)
        m_descriptor = ::memfd_create("tamrix", MFD_CLOEXEC);
    if (m_descriptor < 0)
        return {};
    return QStringLiteral("/proc/%1/fd/%2")
        .arg(QString::number(::getpid()), QString::number(m_descriptor));
}

QByteArray SharedBytes::read(qint64 size) const {
    if (m_descriptor < 0 || size <= 0 || size > std::numeric_limits<int>::max() / 2)
        return {};
    QByteArray bytes(static_cast<int>(size), Qt::Uninitialized);
    char* const start = bytes.data();
    const bool isWhole = inSteps(size, [&](qint64 done, std::size_t left) {
        return ::pread(m_descriptor, start + done, left, done);
    });
    return isWhole ? bytes : QByteArray();
}

bool writeSharedBytes(const QString& path, const uchar* bytes, qint64 size) {
    // Only into what is there already.
    const int descriptor = ::open(path.toLocal8Bit().constData(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool isWhole = inSteps(size, [&](qint64 done, std::size_t left) {
        return ::pwrite(descriptor, bytes + done, left, done);
    });
    ::close(descriptor);
    return isWhole;
}

}  // namespace Tamrix::Wire
