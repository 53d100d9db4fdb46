// "tamrixrunner trace": the page of a trace, for browsers on this machine.

#include <unistd.h>

#include <QCoreApplication>
#include <QFileInfo>

#include "runner/commands/command.h"
#include "runner/trace/traceserver.h"

namespace Tamrix {

namespace {

struct TraceSettings {
    QString folder;
    quint16 port = 0;
};

Outcome<> readPort(const QStringList& values, TraceSettings& settings) {
    bool isNumber = false;
    settings.port = values.constLast().toUShort(&isNumber);
    if (!isNumber)
        return wrongUsage(QStringLiteral("--port takes a port from 0 to 65535, not '%1'")
                              .arg(values.constLast()));
    return {};
}

Outcome<> readFolder(const CommandArguments& arguments, TraceSettings& settings) {
    settings.folder = arguments.own.constFirst();
    return {};
}

int serve(const TraceSettings& settings) {
    QString folder = settings.folder;
    // The folder of a run's results will do as well.
    if (QFileInfo::exists(folder + QStringLiteral("/trace/cases.js")))
        folder += QStringLiteral("/trace");
    if (!QFileInfo::exists(folder + QStringLiteral("/cases.js")))
        return failWith(QStringLiteral("'%1' is no trace").arg(settings.folder));
    TraceServer server(folder);
    if (const Outcome<> listening = server.listen(settings.port); !listening)
        return failWith(listening.error().text);
    const int shown =
        show(QStringLiteral("The trace is shown at http://127.0.0.1:%1/\n").arg(server.port()));
    return shown == ExitSuccess ? QCoreApplication::exec() : shown;
}

}  // namespace

Command traceCommand() {
    return makeCommand<TraceSettings>(
        {{"trace", "FOLDER",
          "Shows the trace of a run to browsers on this machine, until it is ended.", 1, 1},
         {{"port", "PORT", "The port on 127.0.0.1; any that is free without this option.", nullptr,
           readPort}},
         {},
         readFolder,
         serve});
}

}  // namespace Tamrix
