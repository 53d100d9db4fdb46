#pragma once

#include <memory>

#include "support/agentclient.h"

namespace Tamrix {

/// A target on a platform, with what tests of input ask of it.
class InputProgram {
public:
    /// `platform` "xcb" needs a display, ":99", and "wayland" a socket.
    InputProgram(const QString& program, const QString& platform, const QString& display,
                 const QStringList& arguments = {}, const QMap<QString, QString>& environment = {});

    AgentClient& client() { return m_client; }

    /// The object of a name. Handle 0 for none.
    Wire::ObjectInfo object(const QString& name);
    Wire::ObjectInfo item(const QString& view, const QString& text);
    QVariant read(const QString& name, const QString& property);
    void write(const QString& name, const QString& property, const QVariant& value);

    /// Calls a global function on an object and waits until the program is idle. The text of the
    /// failure, empty for a success.
    QString call(const QString& function, const Wire::ObjectInfo& object,
                 const QVariantList& arguments = {}, int timeout = 5000);
    QString call(const QString& function, const QString& name, const QVariantList& arguments = {},
                 int timeout = 5000);
    void sync();
    /// Waits for the program's end; whether it ended with this exit code.
    ///
    /// Behind its event loop, where the agent goes, a program with Qt 6 on Wayland may hang for
    /// ever: its thread for the compositor's events waits for another reader that has gone, and
    /// the program for that thread. Then the way out of the event loop is all that can be seen.
    bool endsWith(int exitCode);

    /// What the target wrote down since the last call.
    QString takeLog();
    /// The same, as soon as there is something: for what happens by a timer.
    QString waitForLog();

private:
    AgentClient m_client;
    bool m_isOnWayland;
};

}  // namespace Tamrix
