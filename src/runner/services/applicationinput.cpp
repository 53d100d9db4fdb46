// The operations of Runner on the objects of the current application, and its input.

#include <exception>

#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/testsettingstype.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "runner/services/runner.h"

namespace Tamrix {

Outcome<RemoteModel*> Runner::modelOf(const SharedPtr<Object>& object) {
    const SharedPtr<Application> application = m_applications.owner(object);
    if (!application)
        return Inspector::noApplication();
    const QString end = application->endText();
    if (!end.isEmpty())
        return fail(FailureKind::Ended, end);
    return &application->model();
}

bool Runner::keyEvent(const QString& key, bool press) {
    const Outcome<RemoteModel*> model = modelOf({});
    return Inspector::self()->take(model ? (*model)->keyEvent(key, press) : fail(model.error()));
}

bool Runner::mouseEvent(SharedPtr<Object> target, int mask, int x, int y, int button, int modifiers,
                        bool buttonChange, bool press) {
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

QString Runner::highlightObject(SharedPtr<Object> object, int milliseconds) {
    const Outcome<RemoteModel*> model = modelOf(object);
    if (!model)
        return model.error().text;
    const Outcome<> outcome = (*model)->highlight(object, milliseconds);
    return outcome ? QString() : outcome.error().text;
}

void Runner::stopHighlight() {
    const Outcome<RemoteModel*> model = modelOf({});
    Inspector::self()->take(model ? (*model)->stopHighlight() : fail(model.error()));
}

SharedPtr<Object> Runner::objectGlobalBounds(SharedPtr<Object> object) {
    const Outcome<RemoteModel*> model = modelOf(object);
    return Inspector::self()->take(model ? (*model)->globalBounds(object) : fail(model.error()));
}

FunctionCallResult<QSharedPointer<BackgroundTask>> Runner::startVideoCapture(
    SharedPtr<ApplicationContext>, QIODevice*) {
    return FunctionCallResult<QSharedPointer<BackgroundTask>>::error(
        QStringLiteral("Videos can't be captured"));
}

// Variable views of the debugger.

PropertyList Runner::components(int remoteId) {
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

bool Runner::objectHasComponents(int remoteId) {
    return !components(remoteId).empty();
}

QStringList Runner::fetchObjectComponents(int remoteId) {
    QStringList lines;
    for (const auto& [name, value] : components(remoteId)) {
        if (!value)
            continue;
        const QVariant known = value->toVariant();
        lines.append(QStringLiteral("%1#%2=%3")
                         .arg(value->className(), name,
                              known.isValid() ? known.toString() : value->objectName()));
    }
    return lines;
}

void Runner::objectNotFound(const QString& name, const QString&, QString* error) {
    // The script stops only where the test and a front end both want it; else it fails at once.
    Debugger* const debugger = Debugger::self();
    if (debugger && debugger->objectNotFoundDebugging() &&
        TestSettingsType::s_objectNotFoundDebugging)
        debugger->stopWithObjectName(name, *error);
}

// One call of the script at a time holds the object model.

bool Runner::acquireRemoteObjectModel() {
    if (m_callDepth++ > 0)
        return true;
    m_applications.startCall();
    noteCall();
    return true;
}

void Runner::releaseRemoteObjectModel() {
    if (--m_callDepth > 0)
        return;
    // The call that started the first application was not noted before.
    const bool isUnwinding = std::uncaught_exceptions() != 0;
    if (!m_lastCall.isValid() && !isUnwinding)
        noteCall();
    // No handler runs beside an exception that is on its way.
    if (!isUnwinding)
        work();
}

void Runner::noteCall() {
    const ScriptContext* const context = ScriptContext::current();
    if (context && m_applications.programs().isAnyRunning())
        m_lastCall = context->lineInfoForResult();
}

}  // namespace Tamrix
