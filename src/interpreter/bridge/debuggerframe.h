#pragma once

#include <QString>

namespace Tamrix {

/// A position as the debugger keeps it; each field is -1 when unknown. Lines count from 1.
struct DebuggerFrame {
    int line = -1;
    int column = -1;
    int sourceId = -1;

    bool operator==(const DebuggerFrame&) const = default;
};

/// A position as scripts see it in a stack trace.
struct ScriptLocation {
    QString fileName;
    int line = -1;

    bool operator==(const ScriptLocation&) const = default;
};

}  // namespace Tamrix
