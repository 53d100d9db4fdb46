#include "runner/services/applicationinput.h"

#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

Outcome<RemoteModel*> ApplicationInput::modelOf(const SharedPtr<Object>& object) {
    const SharedPtr<Application> application = m_state.applications.owner(object);
    if (!application)
        return Inspector::noApplication();
    const QString end = application->endText();
    if (!end.isEmpty())
        return fail(FailureKind::Ended, end);
    return &application->model();
}

bool ApplicationInput::keyEvent(const QString& key, bool press) {
    const Outcome<RemoteModel*> model = modelOf({});
    return Inspector::self()->take(model ? (*model)->keyEvent(key, press) : fail(model.error()));
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
    const Outcome<RemoteModel*> model = modelOf(target);
    return Inspector::self()->take(model ? (*model)->mouseEvent(target, event)
                                         : fail(model.error()));
}

QString ApplicationInput::highlightObject(SharedPtr<Object> object, int milliseconds) {
    const Outcome<RemoteModel*> model = modelOf(object);
    if (!model)
        return model.error().text;
    const Outcome<> outcome = (*model)->highlight(object, milliseconds);
    return outcome ? QString() : outcome.error().text;
}

void ApplicationInput::stopHighlight() {
    const Outcome<RemoteModel*> model = modelOf({});
    Inspector::self()->take(model ? (*model)->stopHighlight() : fail(model.error()));
}

SharedPtr<Object> ApplicationInput::objectGlobalBounds(SharedPtr<Object> object) {
    const Outcome<RemoteModel*> model = modelOf(object);
    return Inspector::self()->take(model ? (*model)->globalBounds(object) : fail(model.error()));
}

FunctionCallResult<QSharedPointer<BackgroundTask>> ApplicationInput::startVideoCapture(
    SharedPtr<ApplicationContext>, QIODevice*) {
    return FunctionCallResult<QSharedPointer<BackgroundTask>>::error(
        QStringLiteral("Videos can't be captured"));
}

// Variable views of the debugger.

PropertyList ApplicationInput::components(int remoteId) {
    const auto read = [&]() -> Outcome<PropertyList> {
        const Outcome<RemoteModel*> model = modelOf({});
        if (!model)
            return fail(model.error());
        const Outcome<SharedPtr<Object>> object = (*model)->objectById(remoteId);
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
