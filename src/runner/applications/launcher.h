#pragma once

#include <QString>
#include <QStringList>

#include "runner/processes/childprocess.h"

namespace Tamrix {

/// Where an agent reports to.
struct AgentAddress {
    QString socketPath;
    /// The token with which it authenticates itself.
    QString token;
};

/// A way into programs: how one is started so that its agent reports to this run. One object for
/// each way, which lives as long as the process and keeps nothing of the programs. Any thread.
class Launcher {
public:
    virtual ~Launcher() = default;

    /// What the attribute "hook" of config.xml calls it.
    virtual QString name() const = 0;
    /// Completes what a program is started with. What the start says stays unless the way needs it
    /// otherwise.
    virtual void prepare(ProgramStart* start, const AgentAddress& address) const = 0;
    /// Whether an agent comes into the program. Without one it is reached through the X display
    /// that it appears on.
    virtual bool bringsAgent() const { return true; }

    /// All ways; the first is the one for programs of which nothing else is known.
    static const QList<const Launcher*>& all();
    static const Launcher& standard() { return *all().constFirst(); }
    /// Null for an unknown name.
    static const Launcher* find(const QString& name);
    /// What their names can be, for messages: "'plugin', 'preload' or 'none'".
    static QString namesText();
};

/// `ours` together with what this process has in an environment variable for lists.
enum class ListPlace { InFront, Behind };
QString joinedWithOthers(const QString& ours, const QString& variable, QLatin1Char separator,
                         ListPlace place);

}  // namespace Tamrix
