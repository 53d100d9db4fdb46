#pragma once

#include <sys/types.h>

#include <functional>

namespace Tamrix {

/// The last that is learnt from a process that does not react any more, before it is killed: a
/// copy of it, forked in the midst of what its main thread does, says where it stands. In the copy
/// everything can be asked as usual, as far as it is whole; when it is not, only the copy crashes
/// or hangs. The process itself stands still meanwhile.
class LastLook {
public:
    /// The longest that a look takes, in seconds: then the copy is ended.
    static constexpr int patience = 6;

    /// Lets ask() find this process ready. `look` runs in the copy, which ends behind it; `done`
    /// runs in a signal handler of this process afterwards, whatever became of the copy. Main
    /// thread only; both stay for the life of the process.
    static void prepare(std::function<void()> look, std::function<void()> done);
    /// Has that process look. One that has not prepared itself is ended by it.
    static void ask(pid_t process);
};

}  // namespace Tamrix
