#pragma once

#include <cstdint>
#include <random>
#include <vector>

namespace Tamrix::Fuzz {

using Input = std::vector<std::uint8_t>;

/// Makes inputs from others. Equal seeds and pools give equal inputs.
class Mutator {
public:
    /// No input becomes longer than this, in bytes.
    static constexpr std::size_t maxSize = std::size_t(64) << 10;

    /// `pool` is what inputs are made from; an empty one gets an empty input.
    Mutator(std::vector<Input> pool, std::uint64_t seed);

    /// One of the pool with a few changes. Now and then the result joins the pool, so that changes
    /// add up.
    Input next();

private:
    std::size_t below(std::size_t limit) { return limit ? m_random() % limit : 0; }
    std::uint8_t randomByte() { return static_cast<std::uint8_t>(m_random()); }
    const Input& anyOfPool() { return m_pool[below(m_pool.size())]; }
    void change(Input& input);
    void setNumber(Input& input);
    void insertBytes(Input& input);
    void eraseBytes(Input& input);
    void copyRange(const Input& from, Input& to);

    std::vector<Input> m_pool;
    std::mt19937_64 m_random;
};

}  // namespace Tamrix::Fuzz
