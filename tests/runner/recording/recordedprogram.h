#pragma once

#include <QPoint>
#include <QStringList>
#include <functional>
#include <memory>

#include "agent/input/testdisplay.h"
#include "interpreter/bridge/eventrecorder.h"
#include "platform/objectmodel/display/input.h"
#include "runner/recording/actionmerger.h"
#include "support/agentclient.h"

namespace Tamrix::Test {

/// A program on an X display of its own, used by that display's mouse and keyboard and recorded
/// meanwhile, as lines of Python.
class RecordedProgram {
public:
    RecordedProgram(const QString& program, const QStringList& arguments,
                    const QMap<QString, QString>& environment = {});
    ~RecordedProgram();

    /// Empty when all is there.
    QString error() const { return m_error; }
    AgentClient& client() { return *m_client; }
    QString display() const { return m_display.name(); }

    // Where something is, on the screen: its middle.
    QPoint at(const QStringList& criteria);
    /// The middle of its left edge, a little inside.
    QPoint leftOf(const QStringList& criteria);
    QPoint itemAt(const QStringList& view, const QString& text);

    // What a person does. Each waits until the program is at rest.
    void click(const QPoint& point, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier, int count = 1);
    void click(const QStringList& criteria) { click(at(criteria)); }
    void drag(const QPoint& from, const QPoint& to);
    void move(const QPoint& point);
    void wheel(const QPoint& point, bool isUp);
    void type(const QString& text);
    void press(const QString& keys);
    void closeWindow();
    void sync();
    /// Lets that much time pass for what is held, in ms.
    void wait(int milliseconds);

    /// The lines since the last call, without indentation; what is held counts as done.
    QStringList takeLines();
    /// All that was done as a script that starts the program by this command line.
    QByteArray script(const QString& commandLine, const QString& language = "python") const;
    /// Ends the program.
    void end() { m_client.reset(); }

private:
    QRect boundsOf(const QStringList& criteria);
    void collect();

    TestDisplay m_display;
    QString m_error;
    std::shared_ptr<Display::XConnection> m_connection;
    std::unique_ptr<Display::Input> m_input;
    std::unique_ptr<AgentClient> m_client;
    std::unique_ptr<EventRecorder> m_language;
    std::unique_ptr<ActionMerger> m_merger;
    QStringList m_lines;
    QList<ScriptAction> m_actions;
    qint64 m_now = 0;
};

}  // namespace Tamrix::Test
