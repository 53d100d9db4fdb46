#include "agent/input/stepqueue.h"

#include <QMetaObject>

#include "agent/core/session.h"
#include "agent/input/windowsystem.h"

namespace Tamrix::Agent {

namespace {

// A timer of 0 ms would wait behind all painting in some event loops.
constexpr int turnInterval = 1;
constexpr int pollInterval = 10;

}  // namespace

StepQueue::StepQueue(QObject* parent) : QObject(parent) {
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &StepQueue::tick);
}

StepQueue* StepQueue::create() {
    return new StepQueue(Session::self());
}

void StepQueue::add(Step step) {
    (m_isInStep ? m_added : m_steps).push_back(std::move(step));
}

void StepQueue::call(Step step) {
    add([this, step = std::move(step)] {
        // Not from the timer's call: an event loop inside would keep it on the stack.
        hold();
        QMetaObject::invokeMethod(
            this,
            [this, step] {
                resume();
                step();
            },
            Qt::QueuedConnection);
    });
}

void StepQueue::waitFor(std::function<bool()> condition, int timeout, Step late) {
    struct Wait {
        StepQueue* queue;
        std::function<bool()> condition;
        int timeout;
        Step late;
        QElapsedTimer clock;

        void operator()() {
            if (!clock.isValid())
                clock.start();
            if (condition())
                return;
            if (clock.hasExpired(timeout)) {
                if (late) {
                    queue->abort();
                    late();
                }
                return;
            }
            queue->add(*this);
            queue->m_timer.start(pollInterval);
        }
    };
    add(Wait{this, std::move(condition), timeout, std::move(late), QElapsedTimer()});
}

void StepQueue::pause(int milliseconds) {
    waitFor([] { return false; }, milliseconds);
}

void StepQueue::abort() {
    m_steps.clear();
    m_added.clear();
}

void StepQueue::start(Step done) {
    m_done = std::move(done);
    m_timer.start(turnInterval);
}

bool StepQueue::isBusy() const {
    return m_isHeld || WindowSystem::self().queuedEvents() > 0;
}

void StepQueue::tick() {
    m_timer.start(turnInterval);
    if (isBusy())
        return;
    if (m_steps.empty()) {
        m_timer.stop();
        deleteLater();
        if (const Step done = std::move(m_done))
            done();
        return;
    }
    Step step = std::move(m_steps.front());
    m_steps.pop_front();
    m_isInStep = true;
    step();
    m_isInStep = false;
    m_steps.insert(m_steps.begin(), std::make_move_iterator(m_added.begin()),
                   std::make_move_iterator(m_added.end()));
    m_added.clear();
}

}  // namespace Tamrix::Agent
