#pragma once

namespace Tamrix::Agent {

/// Whether this process is one under test: a runner is named, and the choice of programs allows it.
/// A process that is not stays untouched. C runtime only.
bool isWanted();

/// Loads libtamrixagent.so from the installation's lib/ and starts it, libtamrixagent-qt6.so where
/// `qtMajor` is 6. `relative` leads there from the folder of the library that calls, "." for the
/// same. A failure is told in one line on standard error. C runtime only.
void loadAgent(const char* relative, int qtMajor);

}  // namespace Tamrix::Agent
