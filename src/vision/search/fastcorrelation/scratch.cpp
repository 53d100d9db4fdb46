#include "vision/search/fastcorrelation/scratch.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <new>
#include <vector>

namespace Tamrix::Vision::ScratchPool {
namespace {

constexpr std::size_t hugePage = std::size_t(2) << 20;

struct Block {
    void* memory;
    std::size_t bytes;
};

struct Pool {
    std::mutex mutex;
    std::vector<Block> free;
    std::size_t bytes = 0;
    std::size_t inUse = 0;
    std::size_t mostInUse = 0;
};

// Never destroyed: threads of a pool may give memory back while the process ends.
Pool& pool() {
    static Pool* const s_pool = new Pool;
    return *s_pool;
}

std::size_t roundedUp(std::size_t bytes, std::size_t step) {
    return (bytes + step - 1) / step * step;
}

bool isLarge(std::size_t bytes) {
    return bytes >= hugePage;
}

// Pages of the system on a boundary of huge pages: an allocator would not give them all back.
void* mapPages(std::size_t bytes) {
    const std::size_t reserved = bytes + hugePage;
    void* const area = mmap(nullptr, reserved, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (area == MAP_FAILED)
        throw std::bad_alloc();
    char* const begin = static_cast<char*>(area);
    const auto address = reinterpret_cast<std::uintptr_t>(begin);
    const std::size_t before = roundedUp(address, hugePage) - address;
    if (before > 0)
        munmap(begin, before);
    munmap(begin + before + bytes, reserved - before - bytes);
    madvise(begin + before, bytes, MADV_HUGEPAGE);
    return begin + before;
}

void* allocate(std::size_t& bytes) {
    // What is aligned for huge pages is not rounded up to them: that would be memory for nothing.
    constexpr std::size_t granularity = std::size_t(64) << 10;
    bytes = roundedUp(bytes, isLarge(bytes) ? granularity : 4096);
    if (isLarge(bytes))
        return mapPages(bytes);
    void* const memory = std::aligned_alloc(64, bytes);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

void release(const Block& block) noexcept {
    if (isLarge(block.bytes))
        munmap(block.memory, block.bytes);
    else
        std::free(block.memory);
}

void releaseOldest(Pool& shared) noexcept {
    shared.bytes -= shared.free.front().bytes;
    release(shared.free.front());
    shared.free.erase(shared.free.begin());
}

void noteUse(Pool& shared, std::size_t bytes) {
    shared.inUse += bytes;
    shared.mostInUse = std::max(shared.mostInUse, shared.inUse);
}

}  // namespace

void* take(std::size_t& bytes) {
    Pool& shared = pool();
    {
        const std::lock_guard lock(shared.mutex);
        auto best = shared.free.end();
        for (auto block = shared.free.begin(); block != shared.free.end(); ++block) {
            const bool fits = block->bytes >= bytes && block->bytes / 2 <= bytes + hugePage;
            if (fits && (best == shared.free.end() || block->bytes < best->bytes))
                best = block;
        }
        if (best != shared.free.end()) {
            void* const memory = best->memory;
            bytes = best->bytes;
            shared.bytes -= bytes;
            *best = shared.free.back();
            shared.free.pop_back();
            noteUse(shared, bytes);
            return memory;
        }
        // What is kept but doesn't fit makes room, so that there is never more than was in use.
        while (!shared.free.empty() && shared.inUse + bytes + shared.bytes > shared.mostInUse)
            releaseOldest(shared);
    }
    void* const memory = allocate(bytes);
    const std::lock_guard lock(shared.mutex);
    noteUse(shared, bytes);
    return memory;
}

void giveBack(void* memory, std::size_t bytes) noexcept {
    Pool& shared = pool();
    const std::lock_guard lock(shared.mutex);
    shared.inUse -= bytes;
    // What doesn't fit in drives the older blocks out only as far as it is needed.
    while (!shared.free.empty() && shared.bytes + bytes > mostKept)
        releaseOldest(shared);
    if (shared.bytes + bytes > mostKept) {
        release({memory, bytes});
        return;
    }
    try {
        shared.free.push_back({memory, bytes});
        shared.bytes += bytes;
    } catch (const std::bad_alloc&) {
        release({memory, bytes});  // The pool is only a convenience.
    }
}

}  // namespace Tamrix::Vision::ScratchPool
