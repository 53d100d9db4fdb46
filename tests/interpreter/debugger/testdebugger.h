#pragma once

#include "interpreter/bridge/debugger.h"

namespace Tamrix::Test {

/// A debugger without a language, for a script that stands still.
class TestDebugger : public Debugger {
public:
    explicit TestDebugger(Interpreter* interpreter = nullptr) : Debugger(interpreter) {}

    VariableBindings variables(const QString&) override { return {}; }

    /// A script file with one call in it: column 4 of line 3, called from line 9.
    void enterScript(const QString& file) {
        setCode(1, file);
        pushFrameAndSetCurrent(9, 0, 1);
        pushFrameAndSetCurrent(3, 4, 1);
    }
};

}  // namespace Tamrix::Test
