#pragma once

#include <QString>

#include "base/outcome.h"

namespace Tamrix {

// Local sockets with names, for processes of this user: those of a kind lie in a folder that only
// this user can enter, and outlast the process that made them when that is killed.

/// The path of a socket. `kind` names the folder, `what` what has such names, for messages. Names
/// have letters, digits, ".", "_" and "-". Fails for others, and when the folder can't be trusted.
Outcome<QString> userSocketPath(const QString& kind, const QString& name, const QString& what);

/// Removes the sockets of a kind at which nobody listens any more.
void clearLeftUserSockets(const QString& kind);

/// A listening socket with its file, which goes with the object.
class UserSocketListener {
public:
    UserSocketListener() = default;
    ~UserSocketListener();
    UserSocketListener(const UserSocketListener&) = delete;
    UserSocketListener& operator=(const UserSocketListener&) = delete;

    Outcome<> listen(const QString& path);
    /// The same where a socket may have been left. Of kind Refused when somebody listens there.
    Outcome<> takeOver(const QString& path);
    int descriptor() const { return m_descriptor; }

private:
    QString m_path;
    int m_descriptor = -1;
};

}  // namespace Tamrix
