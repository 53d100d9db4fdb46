#pragma once

#include <cstddef>
#include <utility>

namespace Tamrix::Vision {

/// Memory for the search from a pool of the process, on huge pages where the system has them: fresh
/// pages cost as much as the arithmetic done on them. What comes out of the pool is not zeroed.
namespace ScratchPool {

/// At least `bytes` bytes on a boundary of 64 bytes; `bytes` becomes what there is. Any thread.
/// Throws std::bad_alloc.
void* take(std::size_t& bytes);

/// Gives back what take() returned, with the size that it gave. Any thread.
void giveBack(void* memory, std::size_t bytes) noexcept;

/// Most bytes that the pool keeps while nobody uses them.
inline constexpr std::size_t mostKept = std::size_t(96) << 20;

}  // namespace ScratchPool

/// An array of plain values in memory of the pool; movable, not copyable.
template <typename T>
class Scratch {
public:
    Scratch() = default;
    explicit Scratch(std::size_t count)
        : m_bytes(count * sizeof(T)), m_data(static_cast<T*>(ScratchPool::take(m_bytes))) {}
    Scratch(Scratch&& other) noexcept
        : m_bytes(std::exchange(other.m_bytes, 0)), m_data(std::exchange(other.m_data, nullptr)) {}
    Scratch& operator=(Scratch&& other) noexcept {
        std::swap(m_bytes, other.m_bytes);
        std::swap(m_data, other.m_data);
        return *this;
    }
    ~Scratch() {
        if (m_data)
            ScratchPool::giveBack(m_data, m_bytes);
    }

    T* data() { return m_data; }
    const T* data() const { return m_data; }
    bool isEmpty() const { return !m_data; }

private:
    std::size_t m_bytes = 0;
    T* m_data = nullptr;
};

}  // namespace Tamrix::Vision
