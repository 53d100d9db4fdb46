#pragma once

#include <QString>

namespace Tamrix {

/// The program lib/exec/tamrixwatch at work for this process: when this process ends, however that
/// happens, it ends all processes with the run's mark that are still there and removes a folder.
/// Without that program it does nothing but warn.
class RunWatch {
public:
    RunWatch() = default;
    /// Lets the watch clean up and waits for its end.
    ~RunWatch();
    RunWatch(const RunWatch&) = delete;
    RunWatch& operator=(const RunWatch&) = delete;

    /// Starts the watch unless it runs already. `folder` is removed with the files in it.
    void start(const QString& runId, const QString& folder);

private:
    int m_pipe = -1;
    int m_process = -1;
};

}  // namespace Tamrix
