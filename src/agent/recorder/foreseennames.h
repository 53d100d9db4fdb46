#pragma once

#include <QHash>
#include <QTimer>
#include <QVector>
#include <functional>
#include <memory>

#include "agent/core/element.h"
#include "agent/core/survey.h"
#include "wire/messages.h"

namespace Tamrix::Agent {

/// Names for recordings, as chooseName() gives them. Those of what a person is about to use are
/// chosen while the program has nothing else to do, and are good until anything happens in it: the
/// event that uses them seldom waits for a look at all objects. GUI thread only.
class ForeseenNames {
public:
    /// Tells what may be used next.
    using Expected = std::function<QVector<Element>()>;

    explicit ForeseenNames(Expected expected);

    Wire::Query nameOf(const Element& element);

    enum class Cause { Person, Program };
    /// To be called for all that happens, behind the use of names by that.
    void forget(Cause cause);
    /// Forgets, and looks no further.
    void stop();

private:
    void foresee();

    Expected m_expected;
    QTimer m_timer;
    /// What foreseeing took last, in ms.
    double m_cost = 0;
    QHash<quint64, Wire::Query> m_names;
    std::shared_ptr<Survey> m_survey;
};

}  // namespace Tamrix::Agent
