// The waits of Runner for objects: first a look at once, then one every 50 ms.

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <algorithm>

#include "interpreter/bridge/testsettingstype.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectmap.h"
#include "runner/services/runner.h"

namespace Tamrix {

namespace {

constexpr int lookInterval = 50;
/// How long an application may take to answer a single look, also when the wait is shorter.
constexpr int minimalLookTimeout = 1000;

/// The object, for which reports have a name now; null stays null.
SharedPtr<Object> knownAs(const SharedPtr<Object>& object, const QString& name) {
    if (object)
        object->setFoundAs(name);
    return object;
}

/// What an object that is waited for had otherwise than expected when it was seen last.
class LastSight {
public:
    /// Takes what a look saw, and adds for how long that stands or, when the object is not there
    /// any more, what it was before.
    void complete(LookUpAnswer* answer) {
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

SharedPtr<Object> Runner::failedLookup(const QString& text) {
    Inspector::self()->setLastError(text);
    return {};
}

SharedPtr<Object> Runner::waitUntilFound(const SharedPtr<Application>& application,
                                         const QString& what, Wire::Wanted wanted, int timeout,
                                         const Look& look) {
    if (!application)
        return failedLookup(Inspector::noApplicationText);
    const int wait = timeout < 0 ? TestSettingsType::s_waitForObjectTimeout : timeout;
    const QDeadlineTimer deadline(wait);
    const QString waited = QString::number(wait);
    bool isLastLook = false;
    while (true) {
        // 1. A look.
        const auto left = static_cast<int>(deadline.remainingTime());
        LookUpAnswer answer;
        RequestError error;
        const bool isAnswered = look(application->model(), isLastLook, &answer, &error,
                                     std::max(left, minimalLookTimeout));
        if (answer.object && (answer.isReady || wanted == Wire::Wanted::Existence))
            return answer.object;
        // 2. What no further look can change.
        const QString end = application->endText();
        if (!end.isEmpty())
            return failedLookup(end);
        if (!isAnswered && error.kind == RequestError::Kind::TimedOut) {
            return failedLookup(QStringLiteral("%1 not found within %2 ms: the application '%3' "
                                               "does not answer")
                                    .arg(what, waited, application->name));
        }
        if (!isAnswered)
            return failedLookup(error.text);
        // 3. The end of the wait. The last look finds out what matched nearly.
        if (isLastLook || (answer.object && deadline.hasExpired())) {
            return failedLookup(answer.object ? QStringLiteral("%1 is %2 after %3 ms: %4")
                                                    .arg(what, answer.lack, waited, answer.obstacle)
                                              : QStringLiteral("%1 not found within %2 ms. %3")
                                                    .arg(what, waited, answer.missText));
        }
        isLastLook = deadline.hasExpired();
        if (isLastLook)
            continue;
        // 4. What has come meanwhile, and a pause.
        work();
        if (m_applications.isInterrupted())
            return failedLookup(
                QStringLiteral("the run was interrupted while %1 was waited for").arg(what));
        m_applications.waitForNews(
            static_cast<int>(std::clamp<qint64>(deadline.remainingTime(), 0, lookInterval)));
    }
}

SharedPtr<Object> Runner::waitForName(const QString& name, Wire::Wanted wanted, int timeout) {
    const ObjectName objectName = ObjectMap::self()->objectName(name);
    if (!objectName.isValid())
        return {};
    const SharedPtr<Object> found = waitUntilFound(
        m_applications.current(), QStringLiteral("Object '%1'").arg(name), wanted, timeout,
        [&](RemoteModel& model, bool isLastLook, LookUpAnswer* answer, RequestError* error,
            int lookTimeout) {
            return model.lookUp(objectName, wanted, isLastLook, answer, error, lookTimeout);
        });
    return knownAs(found, name);
}

SharedPtr<Object> Runner::waitForObjectByName(const QString& realName, bool ready, int timeout) {
    return waitForName(realName, ready ? Wire::Wanted::Readiness : Wire::Wanted::Reach, timeout);
}

SharedPtr<Object> Runner::waitForObjectExists(const QString& realName, bool, int timeout) {
    return waitForName(realName, Wire::Wanted::Existence, timeout);
}

SharedPtr<Object> Runner::waitForObject(SharedPtr<Object> object, bool, int timeout) {
    const SharedPtr<Object> found = waitUntilFound(
        m_applications.owner(object), QStringLiteral("The object"), Wire::Wanted::Readiness,
        timeout,
        [&](RemoteModel& model, bool, LookUpAnswer* answer, RequestError* error, int lookTimeout) {
            return model.lookUp(object, Wire::Wanted::Readiness, answer, error, lookTimeout);
        });
    return knownAs(found, object ? object->foundAs() : QString());
}

SharedPtr<Object> Runner::waitForObjectItem(SharedPtr<Object> object, const QString& item, int row,
                                            int column, int timeout) {
    const QString what = item.isNull() ? QStringLiteral("The item in row %1, column %2")
                                             .arg(QString::number(row), QString::number(column))
                                       : QStringLiteral("Item '%1'").arg(item);
    const SharedPtr<Object> found = waitUntilFound(
        m_applications.owner(object), what, Wire::Wanted::Readiness, timeout,
        [&](RemoteModel& model, bool, LookUpAnswer* answer, RequestError* error, int lookTimeout) {
            return model.findItem(object, item, row, column, true, answer, error, lookTimeout);
        });
    return knownAs(found, what);
}

SharedPtr<Object> Runner::waitForProperties(SharedPtr<Object> object, const QString& realName,
                                            const ObjectName& properties, int timeout) {
    const ObjectName name = object ? ObjectName() : ObjectMap::self()->objectName(realName);
    if (!object && !name.isValid())
        return {};
    LastSight sight;
    return waitUntilFound(
        object ? m_applications.owner(object) : m_applications.current(),
        object ? QStringLiteral("The %1").arg(object->className())
               : QStringLiteral("Object '%1'").arg(realName),
        Wire::Wanted::Readiness, timeout,
        [&](RemoteModel& model, bool isLastLook, LookUpAnswer* answer, RequestError* error,
            int lookTimeout) {
            if (!model.expect(object, name, properties, isLastLook, answer, error, lookTimeout))
                return false;
            sight.complete(answer);
            return true;
        });
}

}  // namespace Tamrix
