#pragma once

#include <QByteArray>
#include <QString>

#include "support/files.h"

namespace Tamrix::Test {

/// Whether a process is there and has not ended: one that only waits for its parent to take notice
/// of its end does not count.
inline bool isRunning(int pid) {
    const QByteArray facts = readFile(QStringLiteral("/proc/%1/stat").arg(pid));
    // The name of the program, in parentheses, may hold anything.
    const char state = facts.mid(facts.lastIndexOf(')') + 2).left(1).append('X').at(0);
    return state != 'X' && state != 'Z';
}

}  // namespace Tamrix::Test
