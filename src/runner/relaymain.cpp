// tamrixrelay: started by SSH on the machine of a program; see relay.h. Speaks frames on its
// standard streams.

#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <csignal>

#include "base/nativebytes.h"
#include "runner/installation.h"
#include "runner/relay/relay.h"

int main(int argc, char* argv[]) {
    std::signal(SIGPIPE, SIG_IGN);
    Tamrix::useUnicodeLocale();
    Tamrix::useNativeBytesForLocale();
    const QCoreApplication application(argc, argv);
    Tamrix::setInstallationPrefix();
    // The streams are the way; nothing else writes there or inherits them.
    const int input = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
    const int output = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::dup2(nothing, STDIN_FILENO);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    return Tamrix::Relay::runRelay(input, output);
}
