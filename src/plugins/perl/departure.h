#pragma once

#include <QString>
#include <vector>

#include "platform/testresult/lineinfo.h"
#include "plugins/perl/perlheaders.h"

namespace Tamrix::PerlPlugin {

/// Why scripts are left by what they can't catch. Nothing else of Perl passes an `eval`.
struct Departure {
    enum class Reason {
        Memory,    ///< Perl leaves by itself when there is no memory left
        Exit,      ///< the script has called exit()
        Fatal,     ///< a failure that ends the case
        Interrupt  ///< Ctrl-C
    };

    Reason reason = Reason::Memory;
    /// Of Fatal.
    QString text;
    bool isSkip = false;
    /// Where the script was, the innermost first.
    std::vector<LineInfo> callStack;
};

/// As long as one exists, what would leave the script dies instead: Perl leaves all code that runs,
/// also that which goes on behind what is evaluated in between. Script thread only.
class HeldDepartures {
public:
    HeldDepartures() { ++s_count; }
    ~HeldDepartures() { --s_count; }
    HeldDepartures(const HeldDepartures&) = delete;
    HeldDepartures& operator=(const HeldDepartures&) = delete;

    static bool areHeld() { return s_count > 0; }

private:
    inline static int s_count = 0;
};

/// Why the script is on its way out. Script thread only.
Departure& departure();

/// Leaves the script, for the reason in departure(). Never over objects of C++.
[[noreturn]] void leaveScript(pTHX);

/// Makes known that the script leaves by exit() itself, once for the process.
void watchExits();

}  // namespace Tamrix::PerlPlugin
