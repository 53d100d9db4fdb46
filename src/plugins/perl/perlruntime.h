#pragma once

#include <QStringList>
#include <array>
#include <csignal>

#include "plugins/perl/perlheaders.h"

namespace Tamrix::PerlPlugin {

/// Perl's runtime for one test case: made when the case begins and destroyed with all that it has
/// left behind, handlers of signals and timers among it. While several exist, one is entered.
class PerlRuntime {
public:
    /// Throws std::runtime_error when Perl can't be started.
    PerlRuntime();
    ~PerlRuntime();
    PerlRuntime(const PerlRuntime&) = delete;
    PerlRuntime& operator=(const PerlRuntime&) = delete;

    PerlInterpreter* perl() const { return m_perl; }
    /// Makes it the one that the calling thread uses.
    void enter() const { PERL_SET_CONTEXT(m_perl); }
    /// Ends it, with the script's END blocks. What holds values of Perl is gone by then.
    void end();

    /// The handlers of signals are those to which its end returns. Before a script runs.
    void noteSignals();

    /// Where Perl looks for modules by itself.
    QStringList libraryFolders() const;
    /// Where it looks for modules: these, then its own folders.
    void setSearchPath(const QStringList& folders) const;

private:
    using SignalActions = std::array<struct sigaction, 32>;

    PerlInterpreter* m_perl;
    SignalActions m_signalActions{};
    QStringList m_ownFolders;
};

}  // namespace Tamrix::PerlPlugin
