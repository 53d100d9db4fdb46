#include "runner/commands/command.h"

#include "runner/processes/terminal.h"

namespace Tamrix {

int failWith(const QString& text) {
    tell(text);
    return ExitUsage;
}

int show(const QString& text) {
    return writeBytes(stdout, text.toLocal8Bit())
               ? ExitSuccess
               : failWith(QStringLiteral("standard output can't be written"));
}

}  // namespace Tamrix
