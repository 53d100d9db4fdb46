#include "runner/services/objectwaits.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <algorithm>

#include "interpreter/bridge/testsettingstype.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectmap.h"

namespace Tamrix {

namespace {

constexpr int lookInterval = 50;
/// How long an application may take to answer a single look, also when the wait is shorter.
constexpr int minimalLookTimeout = 1000;

/// Hands what a wait gave to the script: the object, for which reports have a name now, or null
/// with the failure kept.
SharedPtr<Object> handedOver(const Outcome<TargetAnswer>& found, const QString& name) {
    SharedPtr<Object> object = Inspector::self()->take(found).object;
    if (object)
        object->setFoundAs(name);
    return object;
}

/// What an object that is waited for had otherwise than expected when it was seen last.
class LastSight {
public:
    /// Takes what a look saw, and adds for how long that stands or, when the object is not there
    /// any more, what it was before.
    void complete(TargetAnswer* answer) {
        if (answer->object && !answer->isReady) {
            if (answer->obstacle != m_text || !m_since.isValid())
                m_since.start();
            m_text = answer->obstacle;
            m_last.start();
            answer->obstacle += QStringLiteral(", for the last %1 ms").arg(m_since.elapsed());
        } else if (!answer->object && m_last.isValid()) {
            answer->missText += QStringLiteral(". It was there until %1 ms before: %2")
                                    .arg(QString::number(m_last.elapsed()), m_text);
        }
    }

private:
    QString m_text;
    /// When it was seen so first and last.
    QElapsedTimer m_since;
    QElapsedTimer m_last;
};

}  // namespace

Failure ObjectWaits::interrupted(const QString& what) const {
    return {FailureKind::Failed,
            QStringLiteral("the run was interrupted while %1 was waited for").arg(what)};
}

Outcome<TargetAnswer> ObjectWaits::waitUntilFound(const SharedPtr<Application>& application,
                                                  const QString& what, Wire::Wanted wanted,
                                                  int timeout, const Look& look) {
    if (!application)
        return Inspector::noApplication();
    const int wait = timeout < 0 ? TestSettingsType::s_waitForObjectTimeout : timeout;
    const QDeadlineTimer deadline(wait);
    const QString waited = QString::number(wait);
    bool isLastLook = false;
    while (true) {
        // 1. A look.
        const auto left = static_cast<int>(deadline.remainingTime());
        const Outcome<TargetAnswer> answer =
            look(application->access(), isLastLook, std::max(left, minimalLookTimeout));
        if (answer && (answer->isReady || (answer->object && wanted == Wire::Wanted::Existence)))
            return answer;
        // 2. What no further look can change.
        const QString end = application->endText();
        if (!end.isEmpty())
            return fail(FailureKind::Ended, end);
        if (!answer && answer.error().kind == FailureKind::TimedOut) {
            return fail(FailureKind::TimedOut,
                        QStringLiteral("%1 not found within %2 ms: the application '%3' "
                                       "does not answer")
                            .arg(what, waited, application->name));
        }
        if (!answer && m_state.applications.isInterrupted())
            return fail(interrupted(what));
        if (!answer)
            return answer;
        // 3. The end of the wait. The last look finds out what matched nearly.
        if (answer->object && (isLastLook || deadline.hasExpired())) {
            return fail(FailureKind::NotReady,
                        QStringLiteral("%1 is %2 after %3 ms: %4")
                            .arg(what, answer->lack, waited, answer->obstacle));
        }
        if (isLastLook) {
            return fail(FailureKind::NotFound, QStringLiteral("%1 not found within %2 ms. %3")
                                                   .arg(what, waited, answer->missText));
        }
        isLastLook = deadline.hasExpired();
        if (isLastLook)
            continue;
        // 4. What has come meanwhile, and a pause.
        m_state.background.work();
        if (m_state.applications.isInterrupted())
            return fail(interrupted(what));
        m_state.applications.waitForNews(
            static_cast<int>(std::clamp<qint64>(deadline.remainingTime(), 0, lookInterval)));
    }
}

SharedPtr<Object> ObjectWaits::waitForName(const QString& name, Wire::Wanted wanted, int timeout) {
    const ObjectName objectName = ObjectMap::self()->objectName(name);
    if (!objectName.isValid())
        return {};
    const auto look = [&](Access& access, bool isLastLook, int lookTimeout) {
        Target target = Target::ofName(objectName, wanted);
        target.wantNearMisses = isLastLook;
        return access.lookUp(target, lookTimeout);
    };
    return handedOver(
        waitUntilFound(m_state.applications.current(), QStringLiteral("Object '%1'").arg(name),
                       wanted, timeout, look),
        name);
}

Outcome<Outcome<SharedPtr<Object>>> ObjectWaits::callWithName(const QString& realName,
                                                              const QString& function,
                                                              const ObjectList& arguments,
                                                              int timeout) {
    const Outcome<ObjectName> name = ObjectMap::self()->resolve(realName);
    if (!name)
        return fail(name.error());
    const int wait = timeout < 0 ? TestSettingsType::s_waitForObjectTimeout : timeout;
    const QDeadlineTimer deadline(wait);
    const auto act = [&](Access& access, bool isLastLook, int) {
        // Handlers of events have their turn between two requests.
        constexpr qint64 mostAtOnce = 250;
        const auto left = static_cast<int>(std::max<qint64>(deadline.remainingTime(), 0));
        Target target = Target::ofName(*name, Wire::Wanted::Reach);
        target.wantNearMisses = isLastLook;
        target.timeout = static_cast<int>(std::min<qint64>(left, mostAtOnce));
        return access.act(function, target, arguments, left);
    };
    const Outcome<TargetAnswer> done =
        waitUntilFound(m_state.applications.current(), QStringLiteral("Object '%1'").arg(realName),
                       Wire::Wanted::Reach, wait, act);
    if (!done)
        return fail(done.error());
    if (done->object)
        done->object->setFoundAs(realName);
    return done->result;
}

SharedPtr<Object> ObjectWaits::waitForObjectByName(const QString& realName, bool ready,
                                                   int timeout) {
    return waitForName(realName, ready ? Wire::Wanted::Readiness : Wire::Wanted::Reach, timeout);
}

SharedPtr<Object> ObjectWaits::waitForObjectExists(const QString& realName, bool, int timeout) {
    return waitForName(realName, Wire::Wanted::Existence, timeout);
}

SharedPtr<Object> ObjectWaits::waitForObject(SharedPtr<Object> object, bool, int timeout) {
    const auto look = [&](Access& access, bool, int lookTimeout) {
        return access.lookUp(Target::ofObject(object, Wire::Wanted::Readiness), lookTimeout);
    };
    return handedOver(
        waitUntilFound(m_state.applications.owner(object), QStringLiteral("The object"),
                       Wire::Wanted::Readiness, timeout, look),
        object ? object->foundAs() : QString());
}

SharedPtr<Object> ObjectWaits::waitForObjectItem(SharedPtr<Object> object, const QString& item,
                                                 int row, int column, int timeout) {
    const QString what = item.isNull() ? QStringLiteral("The item in row %1, column %2")
                                             .arg(QString::number(row), QString::number(column))
                                       : QStringLiteral("Item '%1'").arg(item);
    const auto look = [&](Access& access, bool, int lookTimeout) {
        Target target = Target::ofObject(object, Wire::Wanted::Readiness);
        target.item = Wire::ItemAddress{item, row, column};
        return access.lookUp(target, lookTimeout);
    };
    return handedOver(waitUntilFound(m_state.applications.owner(object), what,
                                     Wire::Wanted::Readiness, timeout, look),
                      what);
}

SharedPtr<Object> ObjectWaits::waitForProperties(SharedPtr<Object> object, const QString& realName,
                                                 const ObjectName& properties, int timeout) {
    const ObjectName name = object ? ObjectName() : ObjectMap::self()->objectName(realName);
    if (!object && !name.isValid())
        return {};
    LastSight sight;
    const auto look = [&](Access& access, bool isLastLook, int lookTimeout) {
        Target target{object, name};
        target.wantNearMisses = isLastLook;
        Outcome<TargetAnswer> answer = access.expect(target, properties, lookTimeout);
        if (answer)
            sight.complete(&*answer);
        return answer;
    };
    const Outcome<TargetAnswer> found =
        waitUntilFound(object ? m_state.applications.owner(object) : m_state.applications.current(),
                       object ? QStringLiteral("The %1").arg(object->className())
                              : QStringLiteral("Object '%1'").arg(realName),
                       Wire::Wanted::Readiness, timeout, look);
    return Inspector::self()->take(found).object;
}

}  // namespace Tamrix
