#include "agent/recorder/foreseennames.h"

#include <QElapsedTimer>
#include <algorithm>
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
constexpr Patience patienceWithPerson{15, 10};
constexpr Patience patienceWithProgram{100, 100};

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
        m_survey.emplace();
    return *m_names.insert(handle, chooseName(element, &*m_survey));
}

void ForeseenNames::forget(Cause cause) {
    m_names.clear();
    m_survey.reset();
    const bool isPerson = cause == Cause::Person;
    if (m_timer.isActive() && (m_isHurried || !isPerson))
        return;
    m_isHurried = isPerson;
    const Patience patience = isPerson ? patienceWithPerson : patienceWithProgram;
    m_timer.start(std::max(patience.least, patience.times * m_cost));
}

void ForeseenNames::stop() {
    m_timer.stop();
    m_names.clear();
    m_survey.reset();
}

void ForeseenNames::foresee() {
    QElapsedTimer timer;
    timer.start();
    for (const Element& element : m_expected())
        nameOf(element);
    m_survey.reset();
    m_cost = static_cast<int>(timer.elapsed());
}

}  // namespace Tamrix::Agent
