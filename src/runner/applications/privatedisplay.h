#pragma once

#include <QString>
#include <memory>

#include "base/outcome.h"
#include "runner/processes/childprocess.h"

namespace Tamrix {

/// An X display without a screen and a session bus, both for this run alone and ended with the
/// object. Only who has the display's cookie, in a file of this user, can connect.
class PrivateDisplay {
public:
    PrivateDisplay() = default;
    ~PrivateDisplay();
    PrivateDisplay(const PrivateDisplay&) = delete;
    PrivateDisplay& operator=(const PrivateDisplay&) = delete;

    /// Starts both, marked as the run's. `folder` takes the file with the cookie and is the
    /// session's runtime folder.
    Outcome<> start(const QString& runId, const QString& folder);

    /// What brings a program to this display and bus.
    ProgramEnvironment environment() const;
    /// ":99".
    QString name() const { return m_name; }

private:
    std::unique_ptr<ChildProcess> m_display;
    std::unique_ptr<ChildProcess> m_bus;
    QString m_name;
    QString m_folder;
    QString m_cookieFile;
    QString m_busAddress;
};

/// What brings a program to a display that is there: the X platform, no Wayland.
ProgramEnvironment displayEnvironment(const QString& display);

}  // namespace Tamrix
