#include "dap/session/runstart.h"

#include <QFileInfo>

namespace Tamrix::Dap {

Outcome<ProgramStart> runStart(const QString& runner, const LaunchArguments& arguments,
                               const QString& resultFolder) {
    if (!QFileInfo(arguments.suite).isDir())
        return fail(FailureKind::NotFound,
                    QStringLiteral("the suite '%1' is no folder").arg(arguments.suite));
    ProgramStart start;
    start.program = runner;
    start.arguments =
        QStringList{"run", "--debugger", "--no-console", "--result-dir", resultFolder};
    if (arguments.display)
        start.arguments << "--aut-display" << *arguments.display;
    start.arguments << arguments.suite;
    if (arguments.cases) {
        for (const QString& name : *arguments.cases)
            start.arguments << name;
    }
    if (arguments.arguments && !arguments.arguments->empty()) {
        start.arguments << "--";
        for (const QString& argument : *arguments.arguments)
            start.arguments << argument;
    }
    if (arguments.env)
        start.environment = *arguments.env;
    return start;
}

}  // namespace Tamrix::Dap
