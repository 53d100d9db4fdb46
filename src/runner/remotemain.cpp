// tamrixremote: stands for a program on another machine; see remoteprogram.h. What is to be started
// comes in the environment, which nobody else can read.

#include <sys/resource.h>
#include <unistd.h>
#include <QCoreApplication>
#include <csignal>
#include <cstdio>

#include "base/nativebytes.h"
#include "runner/installation.h"
#include "runner/relay/remoteprogram.h"

using namespace Tamrix;

int main(int argc, char* argv[]) {
    std::signal(SIGPIPE, SIG_IGN);
    useUnicodeLocale();
    useNativeBytesForLocale();
    const QCoreApplication application(argc, argv);
    setInstallationPrefix();
    const std::optional<Relay::RemoteProgram> program = Relay::takeProgramFromEnvironment();
    if (!program) {
        std::fputs("tamrixremote is started by tamrixrunner\n", stderr);
        return 2;
    }

    const Outcome<Relay::End> end = Relay::runRemoteProgram(*program);
    if (!end) {
        std::fprintf(stderr, "%s: %s\n", qUtf8Printable(program->target.host),
                     end.error().text.toLocal8Bit().constData());
        return 255;
    }
    if (end->signal > 0) {
        // As the program ended, but without a picture of this process.
        const rlimit none{0, 0};
        ::setrlimit(RLIMIT_CORE, &none);
        std::signal(end->signal, SIG_DFL);
        ::kill(::getpid(), end->signal);
    }
    return end->exitCode;
}
