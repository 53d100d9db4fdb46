#include "runner/services/applicationinput.h"

#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

Outcome<Access*> ApplicationInput::accessOf(const SharedPtr<Object>& object) {
    const SharedPtr<Application> application = m_state.applications.owner(object);
    if (!application)
        return Inspector::noApplication();
    const QString end = application->endText();
    if (!end.isEmpty())
        return fail(FailureKind::Ended, end);
    return &application->access();
}

bool ApplicationInput::keyEvent(const QString& key, bool press) {
    const Outcome<Access*> access = accessOf({});
    return Inspector::self()->take(access ? (*access)->keyEvent(key, press) : fail(access.error()));
}

bool ApplicationInput::mouseEvent(SharedPtr<Object> target, int mask, int x, int y, int button,
                                  int modifiers, bool buttonChange, bool press) {
    Wire::MouseEvent event;
    event.mask = mask;
    event.x = x;
    event.y = y;
    event.button = button;
    event.modifiers = modifiers;
    event.buttonChange = buttonChange;
    event.press = press;
    const Outcome<Access*> access = accessOf(target);
    return Inspector::self()->take(access ? (*access)->mouseEvent(Target::ofObject(target), event)
                                          : fail(access.error()));
}

QString ApplicationInput::highlightObject(SharedPtr<Object> object, int milliseconds) {
    const Outcome<Access*> access = accessOf(object);
    if (!access)
        return access.error().text;
    const Outcome<> outcome = (*access)->highlight(Target::ofObject(object), milliseconds);
    return outcome ? QString() : outcome.error().text;
}

void ApplicationInput::stopHighlight() {
    const Outcome<Access*> access = accessOf({});
    Inspector::self()->take(access ? (*access)->stopHighlight() : fail(access.error()));
}

SharedPtr<Object> ApplicationInput::objectGlobalBounds(SharedPtr<Object> object) {
    const Outcome<Access*> access = accessOf(object);
    return Inspector::self()->take(access ? (*access)->globalBounds(object) : fail(access.error()));
}

FunctionCallResult<QSharedPointer<BackgroundTask>> ApplicationInput::startVideoCapture(
    SharedPtr<ApplicationContext> context, QIODevice* device) {
    using Result = FunctionCallResult<QSharedPointer<BackgroundTask>>;
    const SharedPtr<Application> application = m_state.applications.checked(context);
    if (!application)
        return Result::error(Inspector::noApplicationText);
    const QString end = application->endText();
    if (!end.isEmpty())
        return Result::error(end);
    // The run's own video does not let the script wait.
    const auto task = m_state.recordings.start(
        m_state.applications, application, device,
        m_state.facts.recordsVideo ? Recordings::Start::AtOnce : Recordings::Start::AtFirstPicture);
    return task ? Result(*task) : Result::error(task.error().text);
}

// Variable views of the debugger.

PropertyList ApplicationInput::components(int remoteId) {
    const auto read = [&]() -> Outcome<PropertyList> {
        const Outcome<Access*> access = accessOf({});
        if (!access)
            return fail(access.error());
        const Outcome<SharedPtr<Object>> object = (*access)->objectById(remoteId);
        if (!object)
            return fail(object.error());
        return (*object)->readProperties();
    };
    return Inspector::self()->take(read());
}

bool ApplicationInput::objectHasComponents(int remoteId) {
    return !components(remoteId).empty();
}

QStringList ApplicationInput::fetchObjectComponents(int remoteId) {
    QStringList lines;
    for (const auto& [name, value] : components(remoteId)) {
        if (!value)
            continue;
        const QVariant known = value->toVariant();
        // An object has components in its turn, which the mark says; a value has none.
        const bool isObject = !known.isValid() && !value->isNull();
        lines.append(QStringLiteral("%1#%2%3=%4")
                         .arg(value->className(), QLatin1String(isObject ? "+" : ""), name,
                              known.isValid() ? known.toString() : value->objectName()));
    }
    return lines;
}

}  // namespace Tamrix
