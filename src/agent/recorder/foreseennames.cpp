#include "agent/recorder/foreseennames.h"

#include <algorithm>
#include <ctime>
#include <utility>

#include "agent/core/session.h"
#include "agent/recorder/namechoice.h"

namespace Tamrix::Agent {

namespace {

/// So long after something has happened names are chosen, in ms, and so many times what that takes:
/// where there are very many objects, it must not become a burden.
struct Patience {
    int least;
    int times;
};
constexpr Patience patienceWithPerson{15, 3};
constexpr Patience patienceWithProgram{100, 100};

/// Of this thread, in ms.
double busyTime() {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

}  // namespace

ForeseenNames::ForeseenNames(Expected expected) : m_expected(std::move(expected)) {
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, [this] { foresee(); });
}

Wire::Query ForeseenNames::nameOf(const Element& element) {
    const quint64 handle = Session::self()->handle(element);
    const auto known = m_names.constFind(handle);
    if (known != m_names.cend())
        return *known;
    if (!m_survey)
        m_survey = std::make_shared<Survey>();
    // A look can make the program send events, behind which the survey is forgotten.
    const std::shared_ptr<Survey> survey = m_survey;
    return *m_names.insert(handle, chooseName(element, survey.get()));
}

void ForeseenNames::forget(Cause cause) {
    m_names.clear();
    m_survey.reset();
    // A mouse that goes on moving is waited for.
    const bool isPerson = cause == Cause::Person;
    if (m_timer.isActive() && !isPerson)
        return;
    const Patience patience = isPerson ? patienceWithPerson : patienceWithProgram;
    m_timer.start(std::max(patience.least, static_cast<int>(patience.times * m_cost)));
}

void ForeseenNames::stop() {
    m_timer.stop();
    m_names.clear();
    m_survey.reset();
}

void ForeseenNames::foresee() {
    const double before = busyTime();
    for (const Element& element : m_expected())
        nameOf(element);
    m_survey.reset();
    m_cost = busyTime() - before;
}

}  // namespace Tamrix::Agent
