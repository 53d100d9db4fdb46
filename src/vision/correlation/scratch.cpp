#include "vision/correlation/scratch.h"

#include <sys/mman.h>

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
};

// Never destroyed: threads of a pool may give memory back while the process ends.
Pool& pool() {
    static Pool* const s_pool = new Pool;
    return *s_pool;
}

std::size_t roundedUp(std::size_t bytes, std::size_t step) {
    return (bytes + step - 1) / step * step;
}

void* allocate(std::size_t& bytes) {
    // What is aligned for huge pages is not rounded up to them: that would be memory for nothing.
    constexpr std::size_t granularity = std::size_t(64) << 10;
    const bool isLarge = bytes >= hugePage;
    bytes = roundedUp(bytes, isLarge ? granularity : 4096);
    void* const memory = std::aligned_alloc(isLarge ? hugePage : 64, bytes);
    if (!memory)
        throw std::bad_alloc();
    if (isLarge)
        madvise(memory, bytes, MADV_HUGEPAGE);
    return memory;
}

}  // namespace

void* take(std::size_t& bytes) {
    {
        Pool& shared = pool();
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
            return memory;
        }
    }
    return allocate(bytes);
}

void giveBack(void* memory, std::size_t bytes) noexcept {
    Pool& shared = pool();
    const std::lock_guard lock(shared.mutex);
    // What doesn't fit in drives the smaller and older blocks out only as far as it is needed.
    while (!shared.free.empty() && shared.bytes + bytes > mostKept) {
        shared.bytes -= shared.free.front().bytes;
        std::free(shared.free.front().memory);
        shared.free.erase(shared.free.begin());
    }
    if (shared.bytes + bytes > mostKept) {
        std::free(memory);
        return;
    }
    try {
        shared.free.push_back({memory, bytes});
        shared.bytes += bytes;
    } catch (const std::bad_alloc&) {
        std::free(memory);  // The pool is only a convenience.
    }
}

}  // namespace Tamrix::Vision::ScratchPool
