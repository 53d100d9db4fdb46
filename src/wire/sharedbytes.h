#pragma once

#include <QString>
#include <memory>
#include <vector>

#include "base/export.h"

namespace Tamrix::Wire {

/// Memory through which another process of this machine and user hands over many bytes: they are
/// copied in there, read where they are, and go through no socket. Where the other process can't
/// reach it, the bytes come another way. What it takes is kept for the next loads. One thread.
class TAMRIX_EXPORT SharedBytes {
public:
    /// What came, at most as many bytes as were asked for. Its memory is not used again before it
    /// goes. The other process could still change the bytes.
    using Load = std::shared_ptr<const uchar>;

    SharedBytes();
    ~SharedBytes();
    SharedBytes(const SharedBytes&) = delete;
    SharedBytes& operator=(const SharedBytes&) = delete;

    /// Where the other process is to write the next load; empty when there is no memory to be had.
    QString path();
    /// The first bytes of what was written there. Null when less was written, or nothing at all.
    Load take(qint64 size);

private:
    class Block;

    /// Those that loads are in, and free ones.
    std::vector<std::shared_ptr<Block>> m_blocks;
    /// Whose path was given last; null before that and behind its load.
    std::shared_ptr<Block> m_next;
};

/// Writes into the memory of that path, which is kept in reach for the next time. False when it
/// can't be reached, or there is not so much memory. One thread.
TAMRIX_EXPORT bool writeSharedBytes(const QString& path, const uchar* bytes, qint64 size);

}  // namespace Tamrix::Wire
