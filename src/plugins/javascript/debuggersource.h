#pragma once

namespace Tamrix::JavaScriptPlugin {

/// The debugger's half of the plug-in in the language itself, to which alone the engine offers its
/// debugger. It has the functions that DebuggerRealm calls. What decides is elsewhere: here is
/// asked and handed on, no more. Values of the script pass as wrappers, which the caller takes off.
extern const char* const debuggerSource;

}  // namespace Tamrix::JavaScriptPlugin
