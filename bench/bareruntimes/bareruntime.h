#pragma once

#include <functional>

namespace Tamrix::Bench {

/// The runtime of a language as somebody has it who embeds it and knows nothing of us, with
/// functions in its C interface as people write them by hand: `nothing`; `plus`, which checks that
/// it is given two integers and gives their sum; `now`, nanoseconds of a clock; `report`, which
/// takes a name and a number.
///
/// Each of the following starts one, tells `onStarted`, runs the script and calls its function
/// `main`. Once for a process, which ends with a message when something fails.
using RunBare = void (*)(const char* script, const std::function<void()>& onStarted);

void runBareJavaScript(const char* script, const std::function<void()>& onStarted);
void runBarePerl(const char* script, const std::function<void()>& onStarted);
void runBarePython(const char* script, const std::function<void()>& onStarted);
void runBareRuby(const char* script, const std::function<void()>& onStarted);
void runBareTcl(const char* script, const std::function<void()>& onStarted);

// What the functions have alike.
long long nanosecondsNow();
void keepReport(const char* what, double nanoseconds);
[[noreturn]] void giveUp(const char* text);

}  // namespace Tamrix::Bench
