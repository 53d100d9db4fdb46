#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <functional>

namespace Tamrix::Agent {

/// Finds out when the application has nothing left to do: posted events, events of the window
/// system, zero timers and painting are done. A program that never rests counts as idle after half
/// a second. Works in whatever event loop runs. Deletes itself at the end, and with the session.
class IdleWatch : public QObject {
public:
    /// `done` is called once, from the event loop.
    static void start(std::function<void()> done);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    explicit IdleWatch(QObject* parent);
    void beginRound();
    void endRound();

    QTimer m_timer;
    QElapsedTimer m_clock;
    QElapsedTimer m_quietClock;
    bool m_isQuiet = false;
    std::function<void()> m_done;
};

}  // namespace Tamrix::Agent
