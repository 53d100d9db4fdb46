#pragma once

#include <QString>

#include "base/outcome.h"
#include "runner/processes/childprocess.h"
#include "runner/processes/privatefolder.h"

namespace Tamrix {

/// A home folder for the applications of one test case: their settings, their data and their
/// temporary files, which are new for each case. What lies in the user's own home they don't see.
class PrivateHome {
public:
    /// Empties it, or makes it. On failure there is none.
    Outcome<> renew();

    /// What leads programs to it; empty without one.
    ProgramEnvironment environment() const;

private:
    PrivateFolder m_folder;
    /// Below the private folder; empty without one.
    QString m_path;
    int m_number = 0;
};

}  // namespace Tamrix
