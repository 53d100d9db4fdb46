#include "platform/objectmodel/display/imagebuffer.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <vector>

namespace Tamrix::Display {

namespace {

/// How much memory waits for the next picture.
constexpr size_t mostBuffers = 2;

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};

struct Buffer {
    std::unique_ptr<void, FreeMemory> memory;
    size_t size = 0;
};

struct Pool {
    std::mutex mutex;
    std::vector<Buffer> buffers;
};

/// Never deleted: images may outlive everything else in the process.
Pool& pool() {
    static Pool* const s_pool = new Pool;
    return *s_pool;
}

Buffer takeBuffer(size_t size) {
    const std::lock_guard<std::mutex> lock(pool().mutex);
    auto& buffers = pool().buffers;
    const auto found = std::find_if(buffers.begin(), buffers.end(),
                                    [size](const Buffer& each) { return each.size == size; });
    if (found == buffers.end())
        return {decltype(Buffer::memory)(std::malloc(size)), size};
    Buffer taken = std::move(*found);
    buffers.erase(found);
    return taken;
}

/// Called when the last image of the memory goes.
void giveBack(void* info) {
    const std::unique_ptr<Buffer> buffer(static_cast<Buffer*>(info));
    const std::lock_guard<std::mutex> lock(pool().mutex);
    auto& buffers = pool().buffers;
    if (buffers.size() == mostBuffers)
        buffers.erase(buffers.begin());
    buffers.push_back(std::move(*buffer));
}

}  // namespace

QImage unfilledImage(const QSize& size) {
    const int bytesPerLine = size.width() * static_cast<int>(sizeof(QRgb));
    auto buffer = std::make_unique<Buffer>(
        takeBuffer(static_cast<size_t>(bytesPerLine) * static_cast<size_t>(size.height())));
    if (!buffer->memory)
        return {};
    auto* const memory = static_cast<uchar*>(buffer->memory.get());
    return {memory,   size.width(),    size.height(), bytesPerLine, QImage::Format_RGB32,
            giveBack, buffer.release()};
}

}  // namespace Tamrix::Display
