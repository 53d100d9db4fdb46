#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QStringList>

namespace Tamrix::Test {

/// A program at a terminal of its own, and the person who types there. The process goes with the
/// object.
class TerminalSession {
public:
    TerminalSession(const QString& program, const QStringList& arguments);
    ~TerminalSession();
    TerminalSession(const TerminalSession&) = delete;
    TerminalSession& operator=(const TerminalSession&) = delete;

    /// As keys: "\r" for Enter, "\x7f" for Backspace, "\x03" for Ctrl-C, "\x1b[A" for the key up.
    void type(const QByteArray& keys) const;
    /// Waits until the text has appeared behind what the last call waited for; false when the
    /// program ends or half a minute passes without.
    bool waitFor(const QByteArray& text);
    /// Waits for the end and gives the exit code; -1 when a signal ended the program, or nothing
    /// did.
    int finish();
    /// All that has appeared.
    QByteArray screen() const { return m_screen; }

private:
    /// False at the end of the output.
    bool read(int timeout);

    pid_t m_process = -1;
    int m_terminal = -1;
    QByteArray m_screen;
    int m_seen = 0;
};

}  // namespace Tamrix::Test
