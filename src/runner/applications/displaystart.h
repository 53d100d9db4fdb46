#pragma once

#include <memory>

#include "base/outcome.h"
#include "platform/objectmodel/access.h"
#include "platform/objectmodel/display/xconnection.h"
#include "runner/applications/startedprogram.h"

namespace Tamrix {

/// The start of a program that no agent comes into: it is there when it shows a window on the X
/// display that it was sent to. Script thread only.
class DisplayStart {
public:
    explicit DisplayStart(std::shared_ptr<StartedProgram> program);

    /// The way to the application; null as long as it shows no window. Fails when the display can't
    /// be reached.
    Outcome<std::unique_ptr<Access>> look();
    /// ":99"
    QString display() const { return m_address.name; }

private:
    ApplicationFacts factsOf(qint64 windowProcess) const;

    std::shared_ptr<StartedProgram> m_program;
    Display::DisplayAddress m_address;
    std::shared_ptr<Display::XConnection> m_connection;
};

}  // namespace Tamrix
