#pragma once

#include <QByteArray>
#include <QDir>
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

/// Whether a process has started another one that is still there.
inline bool hasChild(int pid) {
    for (const QString& process : QDir(QStringLiteral("/proc")).entryList({"[0-9]*"}, QDir::Dirs)) {
        const QByteArray facts = readFile(QStringLiteral("/proc/%1/stat").arg(process));
        // Behind the name stand the state and the parent.
        if (facts.mid(facts.lastIndexOf(')') + 2).split(' ').value(1).toInt() == pid)
            return true;
    }
    return false;
}

}  // namespace Tamrix::Test
