#include <QCoreApplication>
#include <csignal>

#include "base/nativebytes.h"
#include "runner/commands/commands.h"
#include "runner/installation.h"
#include "runner/processes/terminal.h"

int main(int argc, char* argv[]) {
    // A reader that goes away must not take the reports with it.
    std::signal(SIGPIPE, SIG_IGN);
    Tamrix::useUnicodeLocale();
    Tamrix::useNativeBytesForLocale();
    Tamrix::escapeWarnings();
    const QCoreApplication application(argc, argv);
    Tamrix::setInstallationPrefix();
    return Tamrix::execute(QCoreApplication::arguments());
}
