#include "wire/sharedbytes.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace Tamrix::Wire {

namespace {

/// More loads than these are copied out: each block takes a descriptor.
constexpr std::size_t mostBlocks = 4;

/// Memory of a descriptor as this process has it.
class Mapping {
public:
    Mapping() = default;
    ~Mapping() { unmap(); }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    uchar* start() const { return m_start; }

    /// Makes so much of it reachable; false on failure, and then nothing is.
    bool ensure(int descriptor, qint64 size, int protection) {
        if (size <= m_size)
            return true;
        unmap();
        void* const start =
            ::mmap(nullptr, static_cast<std::size_t>(size), protection, MAP_SHARED, descriptor, 0);
        if (start == MAP_FAILED)
            return false;
        m_start = static_cast<uchar*>(start);
        m_size = size;
        return true;
    }

    void unmap() {
        if (m_start)
            ::munmap(m_start, static_cast<std::size_t>(m_size));
        m_start = nullptr;
        m_size = 0;
    }

private:
    uchar* m_start = nullptr;
    qint64 m_size = 0;
};

qint64 sizeOf(int descriptor) {
    struct stat facts {};
    return ::fstat(descriptor, &facts) == 0 ? facts.st_size : -1;
}

/// Memory that another process has made, as far as this one has written to it.
class Target {
public:
    ~Target() { close(); }

    bool leadsTo(const QByteArray& path) const {
        struct stat own {};
        struct stat now {};
        return m_path == path && ::fstat(m_descriptor, &own) == 0 &&
               ::stat(path.constData(), &now) == 0 && own.st_dev == now.st_dev &&
               own.st_ino == now.st_ino;
    }

    bool open(const QByteArray& path) {
        close();
        // Only into what is there already.
        m_descriptor = ::open(path.constData(), O_RDWR | O_CLOEXEC);
        m_path = path;
        return m_descriptor >= 0;
    }

    bool write(const uchar* bytes, qint64 size) {
        // What was reserved can't fail to be there when it is written.
        const bool isReserved =
            sizeOf(m_descriptor) >= size || ::posix_fallocate(m_descriptor, 0, size) == 0;
        if (!isReserved || !m_mapping.ensure(m_descriptor, size, PROT_READ | PROT_WRITE))
            return false;
        std::memcpy(m_mapping.start(), bytes, static_cast<std::size_t>(size));
        return true;
    }

private:
    void close() {
        m_mapping.unmap();
        if (m_descriptor >= 0)
            ::close(m_descriptor);
        m_descriptor = -1;
    }

    QByteArray m_path;
    int m_descriptor = -1;
    Mapping m_mapping;
};

}  // namespace

class SharedBytes::Block {
public:
    Block() : m_descriptor(::memfd_create("tamrix", MFD_CLOEXEC | MFD_ALLOW_SEALING)) {}
    ~Block() {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    int descriptor() const { return m_descriptor; }

    /// Null when less is there.
    const uchar* read(qint64 size) {
        // From now on the other process can't take away what is read here.
        if (::fcntl(m_descriptor, F_ADD_SEALS, F_SEAL_SHRINK) != 0 || sizeOf(m_descriptor) < size ||
            !m_mapping.ensure(m_descriptor, size, PROT_READ))
            return nullptr;
        return m_mapping.start();
    }

private:
    int m_descriptor;
    Mapping m_mapping;
};

SharedBytes::SharedBytes() = default;
SharedBytes::~SharedBytes() = default;

QString SharedBytes::path() {
    if (!m_next) {
        const auto isFree = [](const std::shared_ptr<Block>& block) {
            return block.use_count() == 1;
        };
        const auto free = std::find_if(m_blocks.begin(), m_blocks.end(), isFree);
        if (free != m_blocks.end()) {
            m_next = *free;
        } else {
            m_next = std::make_shared<Block>();
            if (m_blocks.size() < mostBlocks)
                m_blocks.push_back(m_next);
        }
    }
    if (m_next->descriptor() < 0)
        return {};
    return QStringLiteral("/proc/%1/fd/%2")
        .arg(QString::number(::getpid()), QString::number(m_next->descriptor()));
}

SharedBytes::Load SharedBytes::take(qint64 size) {
    const uchar* const start = m_next && size > 0 ? m_next->read(size) : nullptr;
    if (!start)
        return nullptr;
    // One beside the blocks stays for the next load, and gives a copy.
    if (std::find(m_blocks.begin(), m_blocks.end(), m_next) == m_blocks.end()) {
        auto* const copy = new (std::nothrow) uchar[static_cast<std::size_t>(size)];
        if (!copy)
            return nullptr;
        std::memcpy(copy, start, static_cast<std::size_t>(size));
        return {copy, std::default_delete<const uchar[]>()};
    }
    return {std::exchange(m_next, nullptr), start};
}

bool writeSharedBytes(const QString& path, const uchar* bytes, qint64 size) {
    // One for each block that a receiver may have.
    static Target s_targets[mostBlocks];
    static std::size_t s_oldest = 0;
    const QByteArray localPath = path.toLocal8Bit();
    for (Target& target : s_targets) {
        if (target.leadsTo(localPath))
            return target.write(bytes, size);
    }
    Target& target = s_targets[s_oldest];
    s_oldest = (s_oldest + 1) % mostBlocks;
    return target.open(localPath) && target.write(bytes, size);
}

}  // namespace Tamrix::Wire
