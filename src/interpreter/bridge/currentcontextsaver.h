#pragma once

#include "interpreter/bridge/scriptcontext.h"

namespace Tamrix {

/// Makes the script context that was current before current again, on every way out.
class CurrentContextSaver {
public:
    CurrentContextSaver() : m_context(ScriptContext::current()) {}
    ~CurrentContextSaver() { ScriptContext::setCurrent(m_context); }
    CurrentContextSaver(const CurrentContextSaver&) = delete;
    CurrentContextSaver& operator=(const CurrentContextSaver&) = delete;

private:
    ScriptContext* m_context;
};

}  // namespace Tamrix
