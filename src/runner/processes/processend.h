#pragma once

#include <QString>

namespace Tamrix {

/// How a process ended.
struct ProcessEnd {
    /// As a shell tells it: 128 and the signal's number for one that a signal ended. -1 when nobody
    /// knows.
    int exitCode = -1;
    /// 0 for none.
    int signal = 0;
    /// "it exited with code 3", "it was ended by SIGSEGV (Segmentation fault)".
    QString text = QStringLiteral("it ended");
};

ProcessEnd endByExit(int exitCode);
ProcessEnd endBySignal(int signal);
/// Of a status that waitpid() gives.
ProcessEnd processEnd(int status);

}  // namespace Tamrix
