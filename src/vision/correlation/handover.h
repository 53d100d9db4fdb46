#pragma once

#include <atomic>

namespace Tamrix::Vision {

/// Orders memory between threads: what a thread wrote before publish() is there for each thread
/// that calls receive() behind it. Qt's pools order the same by locks of their own; but checks for
/// data races can't look into Qt's libraries, and find what is wrong in ours only with this.
class Handover {
public:
    static void publish() { s_count.fetch_add(1, std::memory_order_release); }
    static void receive() { static_cast<void>(s_count.load(std::memory_order_acquire)); }

private:
    inline static std::atomic<unsigned> s_count;
};

}  // namespace Tamrix::Vision
