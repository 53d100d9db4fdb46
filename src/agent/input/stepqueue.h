#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <deque>
#include <functional>

namespace Tamrix::Agent {

/// Input as a person gives it: steps, one after another, each begun when the application has taken
/// what the one before queued. Driven by a timer, so it goes on in whatever event loop runs: a step
/// may open a modal dialog or a menu. A step only queues events of the window system, or has the
/// application's own code called by call().
///
/// Made by create(), filled with steps, started once; deletes itself at the end, and with the
/// session. What a step adds comes before the steps that wait. GUI thread only.
class StepQueue : public QObject {
public:
    using Step = std::function<void()>;

    static StepQueue* create();

    void add(Step step);
    /// A step that runs code of the application, which may start an event loop of its own. It must
    /// not add steps.
    void call(Step step);
    /// Waits until the condition holds or `timeout` ms are over; then `late` runs, if there is one,
    /// and the steps that are left don't.
    void waitFor(std::function<bool()> condition, int timeout, Step late = Step());
    void pause(int milliseconds);
    /// From a step: the next one begins after resume().
    void hold() { m_isHeld = true; }
    void resume() { m_isHeld = false; }
    /// Drops the steps that are left.
    void abort();

    /// `done` is called once, at the end, also after abort().
    void start(Step done);

private:
    explicit StepQueue(QObject* parent);
    void tick();
    bool isBusy() const;

    QTimer m_timer;
    std::deque<Step> m_steps;
    /// What the running step added.
    std::deque<Step> m_added;
    bool m_isInStep = false;
    bool m_isHeld = false;
    Step m_done;
};

}  // namespace Tamrix::Agent
