#pragma once

#include <map>
#include <memory>

#include "runner/applications/application.h"
#include "runner/applications/applicationstart.h"
#include "runner/remote/sshconnection.h"
#include "runner/remote/system.h"

namespace Tamrix {

/// What is to be started here so that an application starts on another machine: the helper that
/// stands for it. The text is as for resolveApplication(), but programs are looked for there: a
/// path, from the user's home folder, or a name in PATH. Of an application of config.xml its
/// arguments, environment, way in and, when it is absolute, working folder count.
Outcome<ApplicationStart> remoteApplication(const QString& text, const SshTarget& target,
                                            const ApplicationPlaces& places);

/// What the other machines tell of their applications' processes; a connection to each is made when
/// it is needed first. -1 or empty, with the inspector's error set, when a machine does not tell.
class RemoteProcesses {
public:
    qint64 residentMemory(Application& application);
    /// Milliseconds.
    qint64 cpuTime(Application& application);
    QString directory(Application& application);

private:
    Outcome<System*> system(Application& application);
    /// What a command tells.
    Outcome<QString> ask(Application& application, const QStringList& command);

    std::map<QString, std::unique_ptr<System>> m_systems;
};

}  // namespace Tamrix
