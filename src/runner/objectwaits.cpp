// The waits of Runner for objects: first a look at once, then one every 50 ms.

#include <QDeadlineTimer>
#include <algorithm>

#include "interpreter/bridge/testsettingstype.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectmap.h"
#include "runner/runner.h"

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

}  // namespace

SharedPtr<Object> Runner::failedLookup(const QString& text) {
    Inspector::self()->setLastError(text);
    return {};
}

SharedPtr<Object> Runner::waitUntilFound(const SharedPtr<Application>& application,
                                         const QString& what, bool wantReady, int timeout,
                                         const Look& look) {
    if (!application)
        return failedLookup(Inspector::noApplicationText);
    const int wait = timeout < 0 ? TestSettingsType::s_waitForObjectTimeout : timeout;
    const QDeadlineTimer deadline(wait);
    bool isLastLook = false;
    while (true) {
        // 1. A look.
        const auto left = static_cast<int>(deadline.remainingTime());
        LookUpAnswer answer;
        RequestError error;
        const bool isAnswered = look(application->model(), isLastLook, &answer, &error,
                                     std::max(left, minimalLookTimeout));
        if (answer.object && (answer.isReady || !wantReady))
            return answer.object;
        // 2. What no further look can change.
        const QString end = application->endText();
        if (!end.isEmpty())
            return failedLookup(end);
        if (!isAnswered && error.kind == RequestError::Kind::TimedOut) {
            return failedLookup(QStringLiteral("%1 not found within %2 ms: the application '%3' "
                                               "does not answer")
                                    .arg(what)
                                    .arg(wait)
                                    .arg(application->name));
        }
        if (!isAnswered)
            return failedLookup(error.text);
        // 3. The end of the wait. The last look finds out what matched nearly.
        if (isLastLook || (answer.object && deadline.hasExpired())) {
            return failedLookup(answer.object ? QStringLiteral("%1 is not ready after %2 ms: %3")
                                                    .arg(what)
                                                    .arg(wait)
                                                    .arg(answer.obstacle)
                                              : QStringLiteral("%1 not found within %2 ms. %3")
                                                    .arg(what)
                                                    .arg(wait)
                                                    .arg(answer.missText));
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

SharedPtr<Object> Runner::waitForName(const QString& name, bool wantReady, int timeout) {
    const ObjectName wanted = ObjectMap::self()->objectName(name);
    if (!wanted.isValid())
        return {};
    const SharedPtr<Object> found = waitUntilFound(
        m_applications.current(), QStringLiteral("Object '%1'").arg(name), wantReady, timeout,
        [&](RemoteModel& model, bool isLastLook, LookUpAnswer* answer, RequestError* error,
            int lookTimeout) {
            return model.lookUp(wanted, wantReady, isLastLook, answer, error, lookTimeout);
        });
    return knownAs(found, name);
}

SharedPtr<Object> Runner::waitForObjectByName(const QString& realName, bool, int timeout) {
    return waitForName(realName, true, timeout);
}

SharedPtr<Object> Runner::waitForObjectExists(const QString& realName, bool, int timeout) {
    return waitForName(realName, false, timeout);
}

SharedPtr<Object> Runner::waitForObject(SharedPtr<Object> object, bool, int timeout) {
    const SharedPtr<Object> found = waitUntilFound(
        m_applications.owner(object), QStringLiteral("The object"), true, timeout,
        [&](RemoteModel& model, bool, LookUpAnswer* answer, RequestError* error, int lookTimeout) {
            return model.lookUp(object, true, answer, error, lookTimeout);
        });
    return knownAs(found, object ? object->foundAs() : QString());
}

SharedPtr<Object> Runner::waitForObjectItem(SharedPtr<Object> object, const QString& item, int row,
                                            int column, int timeout) {
    const QString what = item.isNull()
                             ? QStringLiteral("The item in row %1, column %2").arg(row).arg(column)
                             : QStringLiteral("Item '%1'").arg(item);
    const SharedPtr<Object> found = waitUntilFound(
        m_applications.owner(object), what, true, timeout,
        [&](RemoteModel& model, bool, LookUpAnswer* answer, RequestError* error, int lookTimeout) {
            return model.findItem(object, item, row, column, true, answer, error, lookTimeout);
        });
    return knownAs(found, what);
}

}  // namespace Tamrix
