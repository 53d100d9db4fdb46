#include "platform/objectmodel/access.h"

namespace Tamrix {

tl::unexpected<Failure> Access::cannot(const char* what) {
    return fail(FailureKind::Refused,
                QStringLiteral("The application can't %1 in the way in which it is connected")
                    .arg(QLatin1String(what)));
}

tl::unexpected<Failure> missFailure(const TargetAnswer& answer) {
    if (!answer.object)
        return fail(FailureKind::NotFound, answer.missText);
    const QString name = answer.object->objectName();
    const QString quoted = name.isEmpty() ? QString() : QStringLiteral(" '%1'").arg(name);
    return fail(FailureKind::NotReady,
                QStringLiteral("%1%2 is %3: %4")
                    .arg(answer.object->className(), quoted, answer.lack, answer.obstacle));
}

Outcome<> Access::prepare(int /*timeout*/) {
    return {};
}

Outcome<> Access::ping(int /*timeout*/) {
    return cannot("be asked whether it answers");
}

Outcome<> Access::settle(int /*timeout*/) {
    return {};
}

void Access::setTurnHook(const std::function<void()>& /*hook*/) {}

void Access::setIdleHook(const std::function<bool()>& /*hook*/) {}

void Access::setEndText(const std::function<QString()>& /*endText*/) {}

void Access::setStallTest(const std::function<bool()>& /*isStalled*/) {}

void Access::setProcessDescriptor(int /*descriptor*/) {}

void Access::setReadyTimeout(int /*milliseconds*/) {}

void Access::hurry(int /*milliseconds*/) {}

Outcome<TargetAnswer> Access::expect(const Target& /*target*/, const ObjectName& /*properties*/,
                                     int /*answerTimeout*/) {
    return cannot("compare properties");
}

Outcome<SharedPtr<Object>> Access::objectById(int /*remoteId*/) {
    return cannot("find objects by number");
}

Outcome<> Access::mouseEvent(const Target& /*target*/, const Wire::MouseEvent& /*event*/) {
    return cannot("take mouse events");
}

Outcome<> Access::keyEvent(const QString& /*key*/, bool /*press*/) {
    return cannot("take key events");
}

Outcome<> Access::highlight(const Target& /*target*/, int /*milliseconds*/) {
    return cannot("highlight objects");
}

Outcome<> Access::stopHighlight() {
    return cannot("highlight objects");
}

Outcome<> Access::quit() {
    return cannot("be asked to close");
}

Outcome<QByteArray> Access::snapshotOf(const Target& /*target*/, bool /*withImages*/) {
    return cannot("give snapshots");
}

Outcome<QByteArray> Access::snapshot(SharedPtr<Object> object) {
    return snapshotOf(Target::ofObject(std::move(object)), false);
}

Outcome<QByteArray> Access::snapshotWithPicture(SharedPtr<Object> object) {
    return snapshotOf(Target::ofObject(std::move(object)), true);
}

Outcome<Wire::ObjectListing> Access::listing() {
    return cannot("list its objects");
}

Outcome<Wire::ObjectOutline> Access::outline() {
    return cannot("tell what is visible");
}

Outcome<SharedPtr<Object>> Access::globalBounds(SharedPtr<Object> /*object*/) {
    return cannot("tell where objects are");
}

Outcome<QString> Access::environmentVariable(const QString& /*name*/) {
    return cannot("tell its environment");
}

std::vector<std::pair<QString, SharedPtr<Object>>> Access::takeEvents() {
    return {};
}

Outcome<> Access::record(const Wire::Record& /*record*/) {
    return cannot("be recorded");
}

std::vector<Wire::Observation> Access::takeObservations() {
    return {};
}

Outcome<NameMatches> Access::matchesOf(const ObjectName& /*name*/) {
    return cannot("tell what a name matches");
}

Outcome<SharedPtr<Object>> Access::objectAt(const QPoint& /*point*/) {
    return cannot("tell what is at a point");
}

Outcome<QList<CheckedName>> Access::namesOf(const SharedPtr<Object>& /*object*/) {
    return cannot("make names");
}

Outcome<QList<NearMiss>> Access::nearMissesOf(const ObjectName& /*name*/) {
    return cannot("tell what nearly has a name");
}

}  // namespace Tamrix
