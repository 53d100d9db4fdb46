#pragma once

#include <sys/types.h>

#include <QDeadlineTimer>
#include <QString>
#include <vector>

namespace Tamrix {

/// The toolkit, such as "Qt 6", whose libraries the processes have loaded and into which no agent
/// comes. Empty when there is none, and when one of them has loaded Qt 5 as well.
QString foreignToolkitOf(const std::vector<pid_t>& processes);

/// Finds out during the start of a program that no agent will come. A program may load its
/// toolkits one after the other, so it is only sure after a while.
class ForeignToolkitWatch {
public:
    /// How long a program may look like one of another toolkit, in milliseconds.
    static constexpr int patience = 1000;
    static constexpr int lookInterval = 250;

    bool isLookDue() const { return m_nextLook.hasExpired(); }
    /// The toolkit when it is sure now, else empty.
    QString look(const std::vector<pid_t>& processes);

private:
    QDeadlineTimer m_nextLook;
    QDeadlineTimer m_sure;
    QString m_seen;
};

}  // namespace Tamrix
