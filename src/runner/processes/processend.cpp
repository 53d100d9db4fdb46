#include "runner/processes/processend.h"

#include <sys/wait.h>

#include <csignal>
#include <cstring>

namespace Tamrix {

namespace {

QString signalText(int signal) {
    const char* name = ::sigabbrev_np(signal);
    const char* description = ::sigdescr_np(signal);
    if (!name || !description)
        return QStringLiteral("signal %1").arg(signal);
    return QStringLiteral("SIG%1 (%2)").arg(QLatin1String(name), QLatin1String(description));
}

}  // namespace

ProcessEnd endByExit(int exitCode) {
    return {exitCode, 0, QStringLiteral("it exited with code %1").arg(exitCode)};
}

ProcessEnd endBySignal(int signal) {
    return {128 + signal, signal, QStringLiteral("it was ended by %1").arg(signalText(signal))};
}

ProcessEnd processEnd(int status) {
    return WIFSIGNALED(status) ? endBySignal(WTERMSIG(status)) : endByExit(WEXITSTATUS(status));
}

}  // namespace Tamrix
